#pragma once

#include "frontend/web_request.h"

namespace onu {

// What acts on the whole unit. The work is done by the unit's tools, whose success is not checked.
// Commands 11, 18 and 21 reply before they start it: the client has its answer when the unit goes
// down, and when the client has gone the work is done nevertheless.

// Command 10: action 0 makes the archive of the settings for the page to fetch, action 1 takes over
// the settings of an uploaded one. " 0" (with the blank) once that is done. Any other action: no
// reply.
void transferConfiguration(WebRequest& request);

// Command 11, whatever the action: "0".
void rebootUnit(WebRequest& request);

// Command 18, whatever the action: "0", then the factory's settings and a reboot.
void restoreDefaults(WebRequest& request);

// Command 21, whatever the action: writes the uploaded file to where update_type says. "0", or "1"
// for a type that there is not. The image is not examined: what has been uploaded is flashed.
void upgradeFirmware(WebRequest& request);

}  // namespace onu
