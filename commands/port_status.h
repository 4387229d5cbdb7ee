// Command 4: settings of the first Ethernet port.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendPortStatus(WebRequest& request);

}  // namespace onu
