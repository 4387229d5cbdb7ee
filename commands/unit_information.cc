#include "commands/unit_information.h"

#include "commands/mac_text.h"
#include "config/config_data.h"
#include "config/profile_data.h"
#include "device/epon_info.h"

namespace onu {

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

}  // namespace onu
