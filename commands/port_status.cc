#include "commands/port_status.h"

#include <vector>

#include "config/config_data.h"
#include "config/profile_data.h"

namespace onu {
namespace {

// The first port of the file; one without values when there is none.
VlanPortInfo firstVlanPort() {
  std::vector<VlanPortInfo> ports;
  ConfigData::getInstance().getVlanPorts(ports);
  return ports.empty() ? VlanPortInfo() : ports.front();
}

PhyPortInfo firstPhyPort() {
  std::vector<PhyPortInfo> ports;
  ConfigData::getInstance().getPhyPorts(ports);
  return ports.empty() ? PhyPortInfo() : ports.front();
}

}  // namespace

void sendPortStatus(WebRequest& request) {
  const VlanPortInfo vlan = firstVlanPort();
  const PhyPortInfo phy = firstPhyPort();
  const ProfileData& profile = ProfileData::getInstance();
  std::string loopDetect;
  profile.getLoopDetect("0", loopDetect);
  std::string multicastMode;
  profile.getMulticastSwitch(multicastMode);
  std::string multicastGroups;
  profile.getMulticastGroupNum(multicastGroups);

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
      {"loop_detect", loopDetect == "1" ? "0" : "1"},  // the pages count the other way round
      {"max_igmp_group", multicastGroups},
      {"mc_mode", multicastMode},
      {"mc_tag_oper", "0"},
      {"pause", phy.flow_control},
  });
}

}  // namespace onu
