#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 5: everything with which the unit identifies itself to the line terminal, and the forward
// error correction. Action 0 reads, 1 stores and applies; any other action has no reply.
//
// Reading replies with an object of texts, each empty when it cannot be read, and not at all
// (std::out_of_range) when the MAC address is too short to be cut up. Storing replies "0", or "1"
// at the first failure among sn, LOID and FEC mode, with what precedes it done. The other values
// are stored unchecked.
void authenticatePon(WebRequest& request);

}  // namespace onu
