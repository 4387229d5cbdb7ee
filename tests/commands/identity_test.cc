// Commands 2 and 4: what the unit is and how its first Ethernet port is set.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kProfile = "/etc/xml_params/onu_profile_xml_cfg_file.xml";
constexpr const char* kEoam = "/etc/xml_params/eoam_xml_cfg_file.xml";

class Identity : public Unit {
 protected:
  // A unit no value of which equals another; the profile's are 0x10 and on, in the file's order.
  static void otherUnit() {
    writeFile(
        kSettings,
        R"(<c><commInfo><model>M</model><softwareVersion>S"1</softwareVersion>)"
        R"(<onu_id>I</onu_id></commInfo><ipInfo><ipAddress>10.0.0.1</ipAddress>)"
        R"(<netMask>255.0.0.0</netMask><onu_mac>02:10:20:30:40:50</onu_mac></ipInfo>)"
        R"(<onu><fec_mode>2</fec_mode><fec_ability>3</fec_ability></onu><vlan>)"
        R"(<port mode='4' default_vid='55' vid_sum='2' vid_serial='6,7'>1</port>)"
        R"(<port default_vid='9'>0</port></vlan><switch><port phy_admin='0' )"
        R"(flow_control='8' auto_neg='9' mode='11' mode_max='12'>1</port><port/></switch></c>)");
    std::string profile = readFile(kProfile);
    const std::string mark = "value=\"";
    int number = 10;
    for (std::size_t at = 0; (at = profile.find(mark, at)) != std::string::npos; ++number) {
      at += mark.size();
      profile.replace(at, profile.find('"', at) - at, "0x" + std::to_string(number));
    }
    writeFile(kProfile, profile);
    writeFile(kEoam,
              "<e><ONU_MULTICAST><oam_multicast_switch>31</oam_multicast_switch>"
              "<port groupnum='32'/><port groupnum='33'/></ONU_MULTICAST>"
              "<ONU_LOOPDETECT><port loopdetect='1'/><port/></ONU_LOOPDETECT></e>");
    writeFile(kInfo, "EPON link\n[onu:active 0x8100 m1 m2 0x0a0b 0x7fff]\n");
  }
  static Outcome withMac(const std::string& mac) {
    writeFile(kSettings, "<c><ipInfo><onu_mac>" + mac + "</onu_mac></ipInfo></c>");
    return cgi(get("cmd_id=2"));
  }
};

TEST_F(Identity, UnitInformation) {
  EXPECT_EQ(
      reply("cmd_id=2"),
      json(R"({afec_ability:"1",app_ver:"V2.0.14 build 2026-08-31",capabi_battery_backup:"0",)"
           R"(capabi_ds_que_num:"4",capabi_fe_bitmap:"0x0e",capabi_fe_num:"3",)"
           R"(capabi_ge_bitmap:"0x01",capabi_ge_num:"1",capabi_max_ds_queue:"4",)"
           R"(capabi_max_us_queue:"8",capabi_pots_num:"0",capabi_service_supported:"GE",)"
           R"(capabi_us_que_num:"8",chipset_chip_model:"6510",chipset_ic_ver:"2019/05/20",)"
           R"(chipset_rev:"a2",chipset_vendor_id:"5443",fec_mode:"1",llid:"0x0005",)"
           R"(onu_fm_ver:"02.00.0e",onu_hw_ver:"V1.2",onu_id:"000CE7419A2F",)"
           R"(onu_ip:"192.168.1.1",onu_mac:"00:0C:E7:41:9A:2F",onu_model:"T143",)"
           R"(onu_netmask:"255.255.255.0",onu_soft_ver:"V2.0.14",onu_vendor_id:"TEVO",)"
           R"(reg_st:"1",type:"SFU-1GE-3FE"})"));
  otherUnit();
  EXPECT_EQ(
      reply("cmd_id=2&action=1&port=1"),
      json(R"({afec_ability:"3",app_ver:"S"1",capabi_battery_backup:"0x28",)"
           R"(capabi_ds_que_num:"0x27",capabi_fe_bitmap:"0x24",capabi_fe_num:"0x23",)"
           R"(capabi_ge_bitmap:"0x22",capabi_ge_num:"0x21",capabi_max_ds_queue:"0x27",)"
           R"(capabi_max_us_queue:"0x26",capabi_pots_num:"0x25",capabi_service_supported:"GE",)"
           R"(capabi_us_que_num:"0x26",chipset_chip_model:"15",chipset_ic_ver:"2023/00/00",)"
           R"(chipset_rev:"16",chipset_vendor_id:"14",fec_mode:"2",llid:"0x0a0b",)"
           R"(onu_fm_ver:"18",onu_hw_ver:"0x12",onu_id:"021020304050",onu_ip:"10.0.0.1",)"
           R"(onu_mac:"02:10:20:30:40:50",onu_model:"0x11",onu_netmask:"255.0.0.0",)"
           R"(onu_soft_ver:"0x13",onu_vendor_id:"0x10",reg_st:"0",type:"M"})"));
}

TEST_F(Identity, UnitInformationOfAlmostNothing) {
  std::filesystem::remove(kProfile);
  std::filesystem::remove(kInfo);
  const std::string text = withMac("00:11:22:33:44:55").out;
  EXPECT_EQ(std::regex_replace(text, std::regex("[a-z_]+:\"\","), ""),
            json(R"({capabi_service_supported:"GE",onu_id:"001122334455",)"
                 R"(onu_mac:"00:11:22:33:44:55",reg_st:"0",type:""})"));
}

TEST_F(Identity, OnuIdGoesByPosition) {
  for (const auto& [mac, id] :
       {std::pair("00112233445566", "0012334566"), {"00:11:22:33:44:55:66", "001122334455:66"}}) {
    const std::string want = std::string(",onu_id:\"") + id + "\",";
    EXPECT_NE(withMac(mac).out.find(want), std::string::npos) << mac;
  }
  for (const char* mac : {"", "0011223344556"}) {
    const Outcome outcome = withMac(mac);
    EXPECT_EQ(outcome.out, "") << mac;
    EXPECT_EQ(outcome.err.rfind("onu-cgi: ", 0), 0U) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_EQ(outcome.status, 1) << mac;
  }
  std::filesystem::remove(kSettings);
  EXPECT_EQ(reply("cmd_id=2"), "");
}

TEST_F(Identity, PortStatus) {
  EXPECT_EQ(reply("cmd_id=4"),
            json(R"([{VlanInfo_mode:"1",VlanInfo_serial:"",admin_status:"1",auto_neg:"1",)"
                 R"(default_vid:"1",fast_leave:"0",link:"1",link_rate:"0",loop_detect:"1",)"
                 R"(max_igmp_group:"64",mc_mode:"0",mc_tag_oper:"0",pause:"0"}])"));
  otherUnit();
  EXPECT_EQ(reply("cmd_id=4&action=1&port=1"),
            json(R"([{VlanInfo_mode:"4",VlanInfo_serial:"6,7",admin_status:"1",auto_neg:"9",)"
                 R"(default_vid:"55",fast_leave:"0",link:"1",link_rate:"11",loop_detect:"0",)"
                 R"(max_igmp_group:"32",mc_mode:"31",mc_tag_oper:"0",pause:"8"}])"));
  const std::string empty =
      json(R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
           R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
           R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])");
  writeFile(kSettings, "<c><vlan><port mode='1'/></vlan><switch/></c>");
  writeFile(kEoam, "<e><ONU_LOOPDETECT><port loopdetect='1 '/></ONU_LOOPDETECT></e>");
  EXPECT_EQ(reply("cmd_id=4"), empty) << "no port of use";
  std::filesystem::remove(kSettings);
  std::filesystem::remove(kEoam);
  EXPECT_EQ(reply("cmd_id=4"), empty) << "no files";
}

TEST_F(Identity, LoopDetectionIsTurnedRound) {
  for (const auto& [stored, shown] : {std::pair("1", "0"), {"0", "1"}, {"", "1"}, {"11", "1"}}) {
    writeFile(kEoam, std::string("<e><ONU_LOOPDETECT><port loopdetect='") + stored +
                         "'/><port loopdetect='1'/></ONU_LOOPDETECT></e>");
    const std::string want = std::string(",loop_detect:\"") + shown + "\",";
    EXPECT_NE(reply("cmd_id=4").find(want), std::string::npos) << stored;
  }
}

}  // namespace
}  // namespace onu::test
