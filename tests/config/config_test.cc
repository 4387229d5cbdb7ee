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
namespace {

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

// The result of a getter, of a setter, and those of many.
template <typename Data, typename Record>
int result(int (Data::*getter)(Record&) const) {
  Record record;
  return (Data::getInstance().*getter)(record);
}
template <typename Data>
int result(int (Data::*setter)(const std::string&) const) {
  return (Data::getInstance().*setter)("1");
}
template <typename... Accessors>
std::vector<int> results(Accessors... accessors) {
  return {result(accessors)...};
}

std::vector<int> allResults() {
  return results(&ConfigData::getCommInfo, &ConfigData::getIpInfo, &ConfigData::getFec,
                 &ConfigData::getLoid, &ConfigData::getPhyPorts, &ConfigData::getVlanPorts,
                 &ConfigData::getSn, &OmciData::getOmciLoid, &OmciData::getPortIsolation,
                 &OmciData::setPortIsolation, &PonSerialData::getPonSerialSrc,
                 &PonSerialData::setPonSerialSrc, &TpmData::getMtu, &TpmData::getQueueWeights,
                 &TpmData::setFlowControl, &TpmData::setSchedMethod,
                 &ProfileData::getMulticastGroupNum, &ProfileData::getMulticastSwitch,
                 &ProfileData::getVendorInfo, &ProfileData::getChipInfo,
                 &ProfileData::getFirmwareVersion, &ProfileData::getCapability);
}

TEST_F(Unit, ResultsAreThePromisedOnes) {
  EXPECT_EQ(allResults(), std::vector<int>(22, 0));
  std::filesystem::remove_all("/etc/xml_params");
  std::filesystem::remove(kSettings);
  EXPECT_EQ(allResults(), std::vector<int>(22, -1));
}

TEST_F(Unit, WhatIsMissingIsLeft) {
  writeFile(kSettings, "<c><commInfo><vendor>v</vendor><onu_id>i</onu_id></commInfo></c>");
  CommInfo comm{"-", "-", "-", "-"};
  EXPECT_EQ(ConfigData::getInstance().getCommInfo(comm), 0);
  EXPECT_EQ(comm.vendor + comm.model + comm.softwareVersion + comm.onu_id, "v--i");
  CapabilityInfo capability;
  std::string text;
  ProfileData::getInstance().getCapability(capability);
  ProfileData::getInstance().getFirmwareVersion(text);
  EXPECT_EQ(capability.onuType + capability.geNum + text, "SFU102.00.0e");
  PonSerialData::getInstance().setPonSerialSrc("7");
  PonSerialData::getInstance().getPonSerialSrc(text);
  std::filesystem::remove_all("/etc/xml_params");
  PonSerialData::getInstance().getPonSerialSrc(text);
  EXPECT_EQ(text, "7");
}

TEST(OnuType, HasAName) {
  std::string names;
  for (const char* type : {"0", "1", "2", "3", "4", " 05x", "6", "7", "8", "-1", "HGU"}) {
    names += onuTypeName(type) + ",";
  }
  EXPECT_EQ(names, "SFU,HGU,SBU,CBU,MDU,MTU,1FE+1POTS SFU,Mixed HGU,8,-1,SFU,");
}

}  // namespace
}  // namespace onu::test
