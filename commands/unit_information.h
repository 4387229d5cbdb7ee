#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 2: identity, addresses, registration state, chipset and capabilities of the unit. Takes
// no parameters and has no failure reply: what cannot be read is empty. Throws std::out_of_range
// when the stored MAC address is too short to make an onu_id of.
void getUnitInformation(WebRequest& request);

}  // namespace onu
