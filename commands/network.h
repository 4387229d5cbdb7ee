// Commands 6, 16, 23 and 25: address of the management interface and largest packets, which are
// stored only; Ethernet ports and the ageing of MAC addresses, stored and applied with clish.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendIpAddress(WebRequest& request);
void storeIpAddress(WebRequest& request);

void sendMtu(WebRequest& request);
void storeMtu(WebRequest& request);

void sendPorts(WebRequest& request);
void storePort(WebRequest& request);

void sendMacAging(WebRequest& request);
void storeMacAging(WebRequest& request);

}  // namespace onu
