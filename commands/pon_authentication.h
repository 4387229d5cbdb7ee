// Command 5: what the unit identifies itself with to the line terminal, and the error correction.
#pragma once

#include "frontend/web_request.h"

namespace onu {

// No reply (std::out_of_range) when the stored MAC address is too short to be cut up.
void sendAuthentication(WebRequest& request);
void storeAuthentication(WebRequest& request);

}  // namespace onu
