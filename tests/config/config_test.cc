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

using Config = Unit;

TEST_F(Config, ListsPorts) {
  writeFile(kSettings,
            "<c><vlan><port default_vid='1' mode='2' vid_sum='3' vid_serial='4'>0</port><other/>"
            "<port default_vid='5'>1</port><port default_vid='6' mode='7'>2</port></vlan></c>");
  std::vector<VlanPortInfo> ports(1);
  EXPECT_EQ(ConfigData::getInstance().getVlanPorts(ports), 0);
  ASSERT_EQ(ports.size(), 3U);
  EXPECT_EQ(ports[1].port + ports[1].mode, "12") << "a missing value goes on";
  EXPECT_EQ(ports[2].port + ports[2].mode + ports[2].vid_sum + ports[2].vid_serial, "2734");
}

TEST_F(Config, LeavesWhatIsMissing) {
  const ConfigData& config = ConfigData::getInstance();
  const PonSerialData& pon = PonSerialData::getInstance();
  CommInfo comm{"-", "-", "-", "-"};
  FecInfo fec;
  LoidInfo loid;
  OmciLoid omci;
  MtuInfo mtu;
  std::vector<PhyPortInfo> ports;
  std::string value = "-";
  writeFile(kSettings, "<c><commInfo><vendor>v</vendor><onu_id>i</onu_id></commInfo></c>");
  EXPECT_EQ(config.getCommInfo(comm), 0);
  EXPECT_EQ(comm.vendor + comm.model + comm.softwareVersion + comm.onu_id, "v--i");
  EXPECT_EQ(pon.setPonSerialSrc("7") + pon.getPonSerialSrc(value), 0);
  writeFile("/etc/xml_params/tpm_xml_cfg_file.xml", "<t><flow_control/></t>");
  EXPECT_EQ(TpmData::getInstance().setFlowControl("1"), 0);
  writeFile(kSettings, "<c><ipInfo><onu_mac>m</onu_mac></ipInfo></c><!-- -->");
  EXPECT_EQ(config.setMac("m"), 0);
  EXPECT_EQ(readFile(kSettings), "<c><ipInfo><onu_mac>m</onu_mac></ipInfo></c>") << "written anew";

  std::filesystem::remove_all("/etc/xml_params");
  std::filesystem::remove(kSettings);
  const TpmData& tpm = TpmData::getInstance();
  const ProfileData& profile = ProfileData::getInstance();
  EXPECT_EQ(config.getCommInfo(comm) + config.getFec(fec) + config.getLoid(loid) +
                config.getSn(value) + config.getPhyPorts(ports) + pon.getPonSerialSrc(value) +
                OmciData::getInstance().getOmciLoid(omci) + tpm.getMtu(mtu) +
                tpm.setFlowControl("1") + tpm.setSchedMethod("1") +
                profile.getMulticastGroupNum(value) + profile.getMulticastSwitch(value),
            -12);
  EXPECT_EQ(value, "7");
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
