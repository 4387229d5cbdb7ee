// Command 22: VLAN of an Ethernet port.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendVlan(WebRequest& request);
void storeVlan(WebRequest& request);
void refuseAction(WebRequest& request);

}  // namespace onu
