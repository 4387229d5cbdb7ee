#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 4: settings of the first Ethernet port, as an array of one object. Takes no parameters
// and has no failure reply: what cannot be read is empty.
void getPortStatus(WebRequest& request);

}  // namespace onu
