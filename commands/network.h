#pragma once

#include "frontend/web_request.h"

namespace onu {

// Settings of the management interface and of the largest packets, which are stored only: the
// address takes effect at the next boot, the rest when the traffic manager reads its file. Action 0
// reads, 1 stores; any other action has no reply.

// Command 6: ip, netmask. Reads both under two names each. Stores: "0", or the page "set ip fail".
void configureIpAddress(WebRequest& request);

// Command 16: ipv4DsMtu, ipv4UsMtu, ipv4pppoeUsMtu. Storing them also switches the limits on: "0",
// or the page "set mtu fail".
void configureMtu(WebRequest& request);

}  // namespace onu
