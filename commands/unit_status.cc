#include "commands/unit_status.h"

#include <vector>

#include "commands/mac_text.h"
#include "config/config_data.h"
#include "config/profile_data.h"
#include "device/epon_info.h"

namespace onu {
namespace {

// The first of the file; one without values when there is none.
template <typename Port>
Port first(const std::vector<Port>& ports) {
  return ports.empty() ? Port() : ports.front();
}

}  // namespace

void sendUnitInformation(WebRequest& request) {
  UnitIdentity identity;
  ConfigData::getInstance().getIdentity(identity);
  OnuProfile profile;
  ProfileData::getInstance().getProfile(profile);
  EponOnuInfo epon;
  EponInfo::getInstance().getOnuInfo(epon);

  const IpInfo& ip = identity.ip;
  const FecInfo& fec = identity.fec;
  request.reply.sendObject({
      {"afec_ability", fec.fec_ability},
      {"app_ver", identity.comm.softwareVersion},
      {"capabi_battery_backup", profile.batteryBackup},
      {"capabi_ds_que_num", profile.dsQueNum},
      {"capabi_fe_bitmap", profile.feBitmapLsb},
      {"capabi_fe_num", profile.feNum},
      {"capabi_ge_bitmap", profile.geBitmap},
      {"capabi_ge_num", profile.geNum},
      {"capabi_max_ds_queue", profile.maxDsQueue},
      {"capabi_max_us_queue", profile.maxUsQueue},
      {"capabi_pots_num", profile.potsNum},
      {"capabi_service_supported", "GE"},
      {"capabi_us_que_num", profile.usQueNum},
      {"chipset_chip_model", profile.ChipInfo::model},
      {"chipset_ic_ver", profile.icDate},
      {"chipset_rev", profile.revision},
      {"chipset_vendor_id", profile.chipId},
      {"fec_mode", fec.fec_mode},
      {"llid", epon.txLLId1},
      {"onu_fm_ver", profile.firmwareVersion},
      {"onu_hw_ver", profile.hwVersion},
      {"onu_id", withoutSeparators(ip.onu_mac)},  // not the stored onu_id
      {"onu_ip", ip.ipAddress},
      {"onu_mac", ip.onu_mac},
      {"onu_model", profile.VendorInfo::model},
      {"onu_netmask", ip.netMask},
      {"onu_soft_ver", profile.swVersion},
      {"onu_vendor_id", profile.vendor},
      {"reg_st", epon.state == "Active" ? "1" : "0"},
      {"type", identity.comm.model},
  });
}

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
