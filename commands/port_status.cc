#include "commands/port_status.h"

#include <vector>

#include "config/config_data.h"
#include "config/profile_data.h"

namespace onu {
namespace {

// The first of the file; one without values when there is none.
template <typename Port>
Port first(const std::vector<Port>& ports) {
  return ports.empty() ? Port() : ports.front();
}

}  // namespace

void sendPortStatus(WebRequest& request) {
  std::vector<VlanPortInfo> vlanPorts;
  std::vector<PhyPortInfo> phyPorts;
  ConfigData::getInstance().getPorts(vlanPorts, phyPorts);
  const VlanPortInfo vlan = first(vlanPorts);
  const PhyPortInfo phy = first(phyPorts);
  PortFeatures features;
  ProfileData::getInstance().getPortFeatures("0", features);

  // The pages rely on the constants whatever state the port is in.
  request.reply.sendArray({
      {"VlanInfo_mode", vlan.mode},
      {"VlanInfo_serial", vlan.vid_serial},
      {"admin_status", "1"},
      {"auto_neg", phy.auto_neg},
      {"default_vid", vlan.default_vid},
      {"fast_leave", "0"},
      {"link", "1"},
      {"link_rate", phy.mode},
      {"loop_detect",
       features.loopDetect == "1" ? "0" : "1"},  // the pages count the other way round
      {"max_igmp_group", features.multicastGroupNum},
      {"mc_mode", features.multicastSwitch},
      {"mc_tag_oper", "0"},
      {"pause", phy.flow_control},
  });
}

}  // namespace onu
