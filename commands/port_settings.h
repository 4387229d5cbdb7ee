// Commands 23 and 25: Ethernet ports and the ageing of MAC addresses, stored and applied with
// clish.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendPorts(WebRequest& request);
void storePort(WebRequest& request);

void sendMacAging(WebRequest& request);
void storeMacAging(WebRequest& request);

}  // namespace onu
