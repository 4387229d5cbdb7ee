// What the accessors promise beyond what the commands make of it.

#include <filesystem>

#include "config/config_data.h"
#include "config/omci_data.h"
#include "config/pon_serial_data.h"
#include "config/profile_data.h"
#include "config/profile_values.h"
#include "config/tpm_data.h"
#include "tests/support/unit.h"

namespace onu::test {

TEST_F(Unit, PortsAreListed) {
  const ConfigData& config = ConfigData::getInstance();
  writeFile(kSettings,
            "<c><vlan><port default_vid='1' mode='2' vid_sum='3' vid_serial='4'>0</port><other/>"
            "<port default_vid='5'>1</port><port default_vid='6' mode='7'>2</port></vlan>"
            "<switch><port mode='8'>3</port></switch></c>");
  std::vector<VlanPortInfo> vlan(1);
  EXPECT_EQ(config.getVlanPorts(vlan), 0);
  ASSERT_EQ(vlan.size(), 3U);
  EXPECT_EQ(vlan[1].port + vlan[1].mode, "12") << "a missing value goes on";
  EXPECT_EQ(vlan[2].port + vlan[2].mode + vlan[2].vid_sum + vlan[2].vid_serial, "2734");
  std::vector<PhyPortInfo> phy(1);
  EXPECT_EQ(config.getPhyPorts(phy), 0);
  ASSERT_EQ(phy.size(), 2U) << "is added to";
  EXPECT_EQ(phy[1].port + phy[1].mode + phy[1].auto_neg, "38");
}

TEST_F(Unit, WhatIsMissingIsLeft) {
  const ConfigData& config = ConfigData::getInstance();
  const OmciData& omci = OmciData::getInstance();
  const PonSerialData& pon = PonSerialData::getInstance();
  const TpmData& tpm = TpmData::getInstance();
  const ProfileData& profile = ProfileData::getInstance();
  CommInfo comm;
  IpInfo ip;
  FecInfo fec;
  LoidInfo loid;
  OmciLoid omciLoid;
  MtuInfo mtu;
  QueueTexts queues;
  VendorInfo vendor;
  ChipInfo chip;
  CapabilityInfo capability;
  std::vector<PhyPortInfo> phy;
  std::string value;
  std::string version;
  const auto results = [&] {
    return std::map<std::string, int>{
        {"getCommInfo", config.getCommInfo(comm)},
        {"getIpInfo", config.getIpInfo(ip)},
        {"getFec", config.getFec(fec)},
        {"getLoid", config.getLoid(loid)},
        {"getPhyPorts", config.getPhyPorts(phy)},
        {"getSn", config.getSn(value)},
        {"getStorm", config.getStorm(value, value)},
        {"getMacAgingTime", config.getMacAgingTime("0", value)},
        {"getOmciLoid", omci.getOmciLoid(omciLoid)},
        {"getPortIsolation", omci.getPortIsolation(value)},
        {"setPortIsolation", omci.setPortIsolation("true")},
        {"getMtu", tpm.getMtu(mtu)},
        {"getQueueWeights", tpm.getQueueWeights(queues)},
        {"setFlowControl", tpm.setFlowControl("1")},
        {"setSchedMethod", tpm.setSchedMethod("1")},
        {"getLoopDetect", profile.getLoopDetect("0", value)},
        {"getMulticastGroupNum", profile.getMulticastGroupNum(value)},
        {"getMulticastSwitch", profile.getMulticastSwitch(value)},
        {"getVendorInfo", profile.getVendorInfo(vendor)},
        {"getChipInfo", profile.getChipInfo(chip)},
        {"getFirmwareVersion", profile.getFirmwareVersion(version)},
        {"getCapability", profile.getCapability(capability)},
        {"setPonSerialSrc", pon.setPonSerialSrc("7")},
        {"getPonSerialSrc", pon.getPonSerialSrc(value)},
    };
  };
  for (const auto& [name, result] : results()) {
    EXPECT_EQ(result, 0) << name;
  }
  EXPECT_EQ(capability.onuType + capability.geNum + version + value, "SFU102.00.0e7");
  std::filesystem::remove_all("/etc/xml_params");
  std::filesystem::remove(kSettings);
  for (const auto& [name, result] : results()) {
    EXPECT_EQ(result, -1) << name;
  }
  EXPECT_EQ(value, "7");

  writeFile(kSettings, "<c><commInfo><vendor>v</vendor><onu_id>i</onu_id></commInfo></c>");
  CommInfo partly{"-", "-", "-", "-"};
  EXPECT_EQ(config.getCommInfo(partly), 0);
  EXPECT_EQ(partly.vendor + partly.model + partly.softwareVersion + partly.onu_id, "v--i");
}

TEST(OnuType, HasAName) {
  std::string names;
  for (const char* type : {"0", "1", "2", "3", "4", " 05x", "6", "7", "8", "-1", "HGU"}) {
    names += onuTypeName(type) + ",";
  }
  EXPECT_EQ(names, "SFU,HGU,SBU,CBU,MDU,MTU,1FE+1POTS SFU,Mixed HGU,8,-1,SFU,");
}

}  // namespace onu::test
