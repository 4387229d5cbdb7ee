#include "commands/unit_information.h"

#include "commands/mac_text.h"
#include "config/config_data.h"
#include "config/profile_data.h"
#include "device/epon_info.h"

namespace onu {
namespace {

// In byte order of the keys, as the reply has them: so every key is a mere append.

void addCapabilities(JsonFields& fields, const CapabilityInfo& capability) {
  fields["capabi_battery_backup"] = capability.batteryBackup;
  fields["capabi_ds_que_num"] = capability.dsQueNum;
  fields["capabi_fe_bitmap"] = capability.feBitmapLsb;
  fields["capabi_fe_num"] = capability.feNum;
  fields["capabi_ge_bitmap"] = capability.geBitmap;
  fields["capabi_ge_num"] = capability.geNum;
  fields["capabi_max_ds_queue"] = capability.maxDsQueue;
  fields["capabi_max_us_queue"] = capability.maxUsQueue;
  fields["capabi_pots_num"] = capability.potsNum;
  fields["capabi_service_supported"] = "GE";
  fields["capabi_us_que_num"] = capability.usQueNum;
}

void addChip(JsonFields& fields, const ChipInfo& chip) {
  fields["chipset_chip_model"] = chip.model;
  fields["chipset_ic_ver"] = chip.icDate;
  fields["chipset_rev"] = chip.revision;
  fields["chipset_vendor_id"] = chip.chipId;
}

}  // namespace

void getUnitInformation(WebRequest& request) {
  const ConfigData& config = ConfigData::getInstance();
  CommInfo comm;
  config.getCommInfo(comm);
  IpInfo ip;
  config.getIpInfo(ip);
  FecInfo fec;
  config.getFec(fec);

  OnuProfile profile;
  ProfileData::getInstance().getProfile(profile);

  EponOnuInfo epon;
  EponInfo::getInstance().getOnuInfo(epon);

  JsonFields fields;
  fields["afec_ability"] = fec.fec_ability;
  fields["app_ver"] = comm.softwareVersion;
  addCapabilities(fields, profile.capability);
  addChip(fields, profile.chip);
  fields["fec_mode"] = fec.fec_mode;
  fields["llid"] = epon.txLLId1;
  fields["onu_fm_ver"] = profile.firmwareVersion;
  fields["onu_hw_ver"] = profile.vendor.hwVersion;
  fields["onu_id"] = withoutSeparators(ip.onu_mac);  // not the stored onu_id
  fields["onu_ip"] = ip.ipAddress;
  fields["onu_mac"] = ip.onu_mac;
  fields["onu_model"] = profile.vendor.model;
  fields["onu_netmask"] = ip.netMask;
  fields["onu_soft_ver"] = profile.vendor.swVersion;
  fields["onu_vendor_id"] = profile.vendor.vendor;
  fields["reg_st"] = epon.state == "Active" ? "1" : "0";
  fields["type"] = comm.model;
  request.reply.sendJsonResponse(toJsonObject(fields));
}

}  // namespace onu
