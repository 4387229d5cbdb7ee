// Commands 2 and 4: what the unit is and how its first Ethernet port is set.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kProfile = "/etc/xml_params/onu_profile_xml_cfg_file.xml";
constexpr const char* kEoam = "/etc/xml_params/eoam_xml_cfg_file.xml";

const std::string kUnitKeys =
    "afec_ability|app_ver|capabi_battery_backup|capabi_ds_que_num|capabi_fe_bitmap|capabi_fe_num|"
    "capabi_ge_bitmap|capabi_ge_num|capabi_max_ds_queue|capabi_max_us_queue|capabi_pots_num|"
    "capabi_service_supported|capabi_us_que_num|chipset_chip_model|chipset_ic_ver|chipset_rev|"
    "chipset_vendor_id|fec_mode|llid|onu_fm_ver|onu_hw_ver|onu_id|onu_ip|onu_mac|onu_model|"
    "onu_netmask|onu_soft_ver|onu_vendor_id|reg_st|type|";
const std::string kPortKeys =
    "VlanInfo_mode|VlanInfo_serial|admin_status|auto_neg|default_vid|fast_leave|link|link_rate|"
    "loop_detect|max_igmp_group|mc_mode|mc_tag_oper|pause|";

// The object of these keys and values, every one of which ends with a bar.
std::string object(std::string keys, std::string values) {
  std::string fields;
  const auto take = [](std::string& list) {
    std::string first = list.substr(0, list.find('|'));
    list.erase(0, first.size() + 1);
    return first;
  };
  while (!keys.empty()) {
    fields += (fields.empty() ? "{" : ",") + take(keys);
    fields += ":\"" + take(values) + "\"";
  }
  return fields + "}" + values;
}

std::string unit(const std::string& values) { return json(object(kUnitKeys, values)); }
std::string port(const std::string& values) { return json("[" + object(kPortKeys, values) + "]"); }

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
  EXPECT_EQ(reply("cmd_id=2"),
            unit("1|V2.0.14 build 2026-08-31|0|4|0x0e|3|0x01|1|4|8|0|GE|8|6510|2019/05/20|a2|5443|"
                 "1|0x0005|02.00.0e|V1.2|000CE7419A2F|192.168.1.1|00:0C:E7:41:9A:2F|T143|"
                 "255.255.255.0|V2.0.14|TEVO|1|SFU-1GE-3FE|"));
  otherUnit();
  EXPECT_EQ(reply("cmd_id=2&action=1&port=1"),
            unit("3|S\"1|0x28|0x27|0x24|0x23|0x22|0x21|0x27|0x26|0x25|GE|0x26|15|2023/00/00|16|14|"
                 "2|0x0a0b|18|0x12|021020304050|10.0.0.1|02:10:20:30:40:50|0x11|255.0.0.0|0x13|"
                 "0x10|0|M|"));
  std::filesystem::remove(kProfile);
  std::filesystem::remove(kInfo);
  EXPECT_EQ(withMac("00:11:22:33:44:55").out,
            unit("|||||||||||GE||||||||||001122334455||00:11:22:33:44:55|||||0||"));
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
  EXPECT_EQ(reply("cmd_id=4"), port("1||1|1|1|0|1|0|1|64|0|0|0|"));
  otherUnit();
  EXPECT_EQ(reply("cmd_id=4&action=1&port=1"), port("4|6,7|1|9|55|0|1|11|0|32|31|0|8|"));
  const std::string empty = port("||1|||0|1||1|||0||");
  writeFile(kSettings, "<c><vlan><port mode='1'/></vlan><switch/></c>");
  for (const char* loop : {"1 ", "0", "", "11"}) {
    writeFile(kEoam, std::string("<e><ONU_LOOPDETECT><port loopdetect='") + loop +
                         "'/><port loopdetect='1'/></ONU_LOOPDETECT></e>");
    EXPECT_EQ(reply("cmd_id=4"), empty) << "no port of use, loop detection " << loop;
  }
  std::filesystem::remove(kSettings);
  std::filesystem::remove(kEoam);
  EXPECT_EQ(reply("cmd_id=4"), empty) << "no files";
}

}  // namespace
}  // namespace onu::test
