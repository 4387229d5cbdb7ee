#pragma once

#include "frontend/web_request.h"

namespace onu {

// Settings of the Ethernet ports, stored and then applied with clish, whose outcome nobody looks
// at. Action 0 reads, 1 stores; any other action has no reply. The blanks inside the bodies are
// what the pages compare with.

// Command 23: port, flow_control, auto, mode. Reads an array of all ports, "[ {...},{...}]", or
// "[]". Stores for one port, whose phy_admin becomes empty, and applies to port 0 of the WAN side:
// "0", or "1  " with nothing applied when no port has that name.
void configurePort(WebRequest& request);

// Command 25, port "0" only. Reads aging_time, or "1". Stores age_time: " 0", or " 1" with nothing
// applied.
void configureMacAging(WebRequest& request);

}  // namespace onu
