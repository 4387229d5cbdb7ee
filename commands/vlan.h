#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 22, VLAN of an Ethernet port: portId, mode (1 transparent, 2 tag, 3 translation, 4
// trunk), def_vid, vid_sum, vid_serial. Action 0 reads the first port of the settings as an array
// of one object, the list of VLANs as vidSerial, or "[]". Action 1 applies the mode to the switch
// and then stores it: "0"; "1" when storing fails or, with nothing stored and an empty command
// applied, for any other mode. Any other action: "1".
void configureVlan(WebRequest& request);

}  // namespace onu
