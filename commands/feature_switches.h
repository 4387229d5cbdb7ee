// Commands 14, 17 and 24: loop detection, multicast mode, port isolation; settings only.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendLoopDetection(WebRequest& request);
void storeLoopDetection(WebRequest& request);

void sendMulticastMode(WebRequest& request);
void storeMulticastMode(WebRequest& request);

void sendPortIsolation(WebRequest& request);
void storePortIsolation(WebRequest& request);

}  // namespace onu
