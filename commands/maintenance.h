// Commands 10, 11, 18 and 21: what acts on the whole unit. The work is done by the unit's tools,
// whose success is not checked. Commands 11, 18 and 21 reply before they start it: the client has
// its answer when the unit goes down, and when the client has gone the work is done nevertheless.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void exportConfiguration(WebRequest& request);
void importConfiguration(WebRequest& request);

void rebootUnit(WebRequest& request);
void restoreDefaults(WebRequest& request);
void upgradeFirmware(WebRequest& request);

}  // namespace onu
