// Commands 6 and 16: address of the management interface, largest packets; stored only.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendIpAddress(WebRequest& request);
void storeIpAddress(WebRequest& request);

void sendMtu(WebRequest& request);
void storeMtu(WebRequest& request);

}  // namespace onu
