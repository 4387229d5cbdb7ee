// Command 3: readings of the optical module, with units.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendOpticalReadings(WebRequest& request);

}  // namespace onu
