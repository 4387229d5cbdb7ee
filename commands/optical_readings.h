#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 3: temperature, supply voltage, laser bias and both optical powers of the module, as
// texts with units. Takes no parameters and has no failure reply: a module that cannot be read
// shows as zeros and "-inf dBm".
void getOpticalReadings(WebRequest& request);

}  // namespace onu
