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

void getPortStatus(WebRequest& request) {
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
  JsonFields fields;
  fields["VlanInfo_mode"] = vlan.mode;
  fields["VlanInfo_serial"] = vlan.vid_serial;
  fields["admin_status"] = "1";
  fields["auto_neg"] = phy.auto_neg;
  fields["default_vid"] = vlan.default_vid;
  fields["fast_leave"] = "0";
  fields["link"] = "1";
  fields["link_rate"] = phy.mode;
  fields["loop_detect"] = loopDetect == "1" ? "0" : "1";  // the pages count the other way round
  fields["max_igmp_group"] = multicastGroups;
  fields["mc_mode"] = multicastMode;
  fields["mc_tag_oper"] = "0";
  fields["pause"] = phy.flow_control;
  request.reply.sendJsonResponse("[" + toJsonObject(fields) + "]");
}

}  // namespace onu
