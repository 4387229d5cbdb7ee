#pragma once

#include "frontend/web_request.h"

namespace onu {

// Features that are switched on or off in the settings only; nothing is applied to the device here.
// Action 0 reads, 1 stores; any other action has no reply.

// Command 14, loop detection of an Ethernet port. Stores loop_detect "0" as "1" and anything else
// as "2" for `port`: "0", or the page "set port loopdetect fail". Reads always that of port "0",
// in a form of its own: [{loop_detect:"0"}].
void switchLoopDetection(WebRequest& request);

// Command 17, mc_mode: the multicast mode as it is stored, in both directions. Storing it replies
// "0", or the page "set mtu fail".
void switchMulticastMode(WebRequest& request);

// Command 24, iso: "1" when the Ethernet ports are kept apart, else "0". Storing takes anything but
// "1" as off and replies "0", or "1" when that fails.
void switchPortIsolation(WebRequest& request);

}  // namespace onu
