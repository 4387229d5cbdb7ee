// Commands 2 and 4: identity, addresses, registration, chipset and capabilities of the unit;
// settings of its first Ethernet port.
#pragma once

#include "frontend/web_request.h"

namespace onu {

// No reply (std::out_of_range) when the stored MAC address is too short to make an onu_id of.
void sendUnitInformation(WebRequest& request);
void sendPortStatus(WebRequest& request);

}  // namespace onu
