// What the accessors promise beyond what the commands make of it.

#include <filesystem>
#include <memory>

#include "config/config_data.h"
#include "config/omci_data.h"
#include "config/pon_serial_data.h"
#include "config/profile_data.h"
#include "config/profile_values.h"
#include "config/tpm_data.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

TEST_F(Unit, WhatIsMissingIsLeft) {
  writeFile(kSettings,
            "<c><vlan><port default_vid='1' mode='2'>0</port><port default_vid='3'>1</port></vlan>"
            "<switch><port mode='4'>2</port></switch><onu><fec_ability/></onu></c>");
  FecInfo fec{"-", "-"};
  EXPECT_EQ(ConfigData::getInstance().getFec(fec), -1);
  EXPECT_EQ(fec.fec_mode + fec.fec_ability, "--");
  std::vector<VlanPortInfo> vlan(1);
  std::vector<PhyPortInfo> phy(1);
  ConfigData::getInstance().getPorts(vlan, phy);
  ASSERT_EQ(vlan.size(), 2U);
  EXPECT_EQ(vlan[1].port + vlan[1].mode + vlan[1].default_vid, "123") << "a mode goes on";
  ASSERT_EQ(phy.size(), 2U) << "is added to";
  EXPECT_EQ(phy[1].port + phy[1].mode + phy[1].auto_neg, "24");

  const ProfileData& profile = ProfileData::getInstance();
  std::string text = "-";
  EXPECT_EQ(profile.getLoopDetect("9", text), -1);
  writeFile(kProfile, "<p><Vendor/></p>");
  VendorInfo vendor{"-", "-", "-", "-"};
  EXPECT_EQ(profile.getVendorInfo(vendor), 0);
  EXPECT_EQ(profile.getFirmwareVersion(text), 0);
  EXPECT_EQ(vendor.vendor + vendor.model + vendor.hwVersion + vendor.swVersion + text, "-----");
  writeFile(kProfile, "<p><Vendor><attrib name='x' value='y'/></Vendor></p>");
  EXPECT_EQ(profile.getFirmwareVersion(text), 0);
  EXPECT_EQ(text, "") << "entries without one";
}

// The results of getters, and of setters with an empty text.
template <typename... Data, typename... Record>
std::vector<int> results(int (Data::*... accessors)(Record&) const) {
  return {(Data::getInstance().*accessors)(*std::make_unique<Record>())...};
}

TEST_F(Unit, ResultsAreThePromisedOnes) {
  const auto all = [] {
    return results(&ConfigData::getCommInfo, &ConfigData::getFec, &ConfigData::getLoid,
                   &ConfigData::getPhyPorts, &ConfigData::getSn, &ConfigData::getVlanPorts,
                   &OmciData::getOmciLoid, &OmciData::getPortIsolation, &OmciData::setPortIsolation,
                   &PonSerialData::getPonSerialSrc, &TpmData::getMtu, &TpmData::getQueueWeights,
                   &TpmData::setFlowControl, &TpmData::setSchedMethod,
                   &ProfileData::getMulticastGroupNum, &ProfileData::getMulticastSwitch,
                   &ProfileData::getVendorInfo, &ProfileData::getChipInfo,
                   &ProfileData::getFirmwareVersion, &ProfileData::getCapability);
  };
  EXPECT_EQ(all(), std::vector<int>(20, 0));
  std::filesystem::remove_all("/etc/xml_params");
  std::filesystem::remove(kSettings);
  EXPECT_EQ(all(), std::vector<int>(20, -1));
}

TEST_F(Unit, OnuTypesHaveNames) {
  CapabilityInfo capability;
  ProfileData::getInstance().getCapability(capability);
  std::string names = capability.geNum + capability.onuType + ",";
  for (const char* type : {"0", "1", "2", "3", "4", " 05x", "6", "7", "8", "-1", "HGU"}) {
    names += onuTypeName(type) + ",";
  }
  EXPECT_EQ(names, "1SFU,SFU,HGU,SBU,CBU,MDU,MTU,1FE+1POTS SFU,Mixed HGU,8,-1,SFU,");
}

}  // namespace
}  // namespace onu::test
