// Commands 6, 16, 23 and 25: address, MTU, Ethernet ports, MAC ageing.

#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

class Network : public SettingsUnit {};

TEST_F(Network, IsRead) {
  check({"", "cmd_id=6",
         json("{cur_ip:\"192.168.1.1\",cur_netmask:\"255.255.255.0\","
              "ip:\"192.168.1.1\",netmask:\"255.255.255.0\"}"),
         ""});
  check({"", "cmd_id=16&action=0",
         json("{ipv4DsMtu:\"ds\",ipv4UsMtu:\"us\",ipv4pppoeUsMtu:\"po\"}"), ""});
  check({"", "cmd_id=23",
         json("[ {auto:\"a0\",flow_control:\"f0\",link:\"net_up\",mode_max:\"x0\",phy:\"p0\","
              "port_id:\"0\",work_mode:\"m0\"},{auto:\"\",flow_control:\"\",link:\"net_up\","
              "mode_max:\"\",phy:\"\",port_id:\"1\",work_mode:\"<\"}]"),
         ""});
  check({"", "cmd_id=25", json("{aging_time:\"300\"}"), ""});
}

TEST_F(Network, WithoutValues) {
  const std::string address = "cmd_id=6&action=1&ip=10.0.0.10&netmask=255.0.0.0";
  for (const auto& [query, want] : std::map<std::string, std::string>{
           {"cmd_id=6", json("{cur_ip:\"\",cur_netmask:\"\",ip:\"\",netmask:\"\"}")},
           {address, errorPage(405, "set ip fail")},
           {"cmd_id=16", json("{ipv4DsMtu:\"\",ipv4UsMtu:\"\",ipv4pppoeUsMtu:\"\"}")},
           {"cmd_id=16&action=1&ipv4DsMtu=1", errorPage(405, "set mtu fail")},
           {"cmd_id=23", json("[]")},
           {"cmd_id=23&action=1&port=0&flow_control=1", json("1  ")},
           {"cmd_id=25", json("1")},
           {"cmd_id=25&action=1&age_time=1", json(" 1")},
       }) {
    checkWithoutValues(query, want);
  }
  // The message of the settings stands in front of the page.
  writeFile(kSettings, "<x><ipInfo/></x>");
  EXPECT_EQ(reply(address), "set ip address type  error\n" + errorPage(405, "set ip fail"));
}

TEST_F(Network, AddressAndMtuAreOnlyStored) {
  const OddText odd;
  const std::string ip = "cmd_id=6&action=1";
  const std::string mtu = "cmd_id=16&action=1";
  const std::string refused = errorPage(405, "set ip fail");
  for (const SettingsCase& c : std::vector<SettingsCase>{
           {"mask", ip + "&netmask=255.255.0.0&ip=192.168.1.1", json("0"), "tevo ",
            changed("255.255.255.0", "255.255.0.0")},
           {"same", ip + "&ip=192.168.1.1&netmask=255.255.255.0", json("0"), ""},
           {"odd", ip + "&ip=" + odd.text + "&netmask=12345678", json("0"), "tevo ",
            changed("192.168.1.1", odd.asText, "255.255.255.0", "12345678")},
           {"seven characters", ip + "&ip=1.1.1.1&netmask=255.0.0.0", refused, ""},
           {"no mask", ip + "&ip=192.168.1.1", refused, ""},
           {"other action", "cmd_id=6&action=2&ip=10.0.0.10&netmask=255.0.0.0", "", ""},
           {"limits", mtu + "&ipv4DsMtu=1&ipv4UsMtu=2&ipv4pppoeUsMtu=" + odd.text, json("0"),
            "tpm ",
            changed(">e<", ">1<", ">ds<", ">1<", ">us<", ">2<", ">po<", ">" + odd.asText + "<")},
           {"no limits", mtu, json("0"), "tpm ",
            changed(">e<", ">1<", ">ds<", "><", ">us<", "><", ">po<", "><")},
           {"other action of limits", "cmd_id=16&action=-1&ipv4DsMtu=1", "", ""},
       }) {
    check(c);
  }
  // Limits that the file lacks are not added; the file is written though nothing changes.
  writeFile(kTpm, "<t><mtu_setting><ipv4_mtu_us>7</ipv4_mtu_us></mtu_setting></t><!-- -->");
  EXPECT_EQ(reply(mtu + "&ipv4UsMtu=7"), json("0"));
  EXPECT_EQ(readFile(kTpm), "<t><mtu_setting><ipv4_mtu_us>7</ipv4_mtu_us></mtu_setting></t>");
}

// Port 0 as it is stored; its phy_admin gets lost.
std::string port(const std::string& flow, const std::string& negotiate, const std::string& mode) {
  return "\"\" flow_control=\"" + flow + "\" auto_neg=\"" + negotiate + "\" mode=\"" + mode + "\"";
}

TEST_F(Network, PortsAndAgingAreStoredThenApplied) {
  const OddText odd;
  const auto portScript = [](const std::string& mode, const char* flow) {
    return std::vector{"tpm\nconfig\nport autoneg 0 WAN true " + mode + "\nport fc 0 WAN " + flow +
                       "\n\n\nquit\n"};
  };
  const auto agingScript = [](const std::string& time) {
    return std::vector{"eoam\nport mac_aging_time 0 UNI_0 " + time + "\n\nquit\n"};
  };
  const std::string port0 = R"("p0" flow_control="f0" auto_neg="a0" mode="m0")";
  const std::string set = "cmd_id=23&action=1";
  const std::string aging = "cmd_id=25&action=1";
  const std::string run = kClish;
  for (const SettingsCase& c : std::vector<SettingsCase>{
           {"flow control off", set + "&port=0&flow_control=0&auto=1&mode=3", json("0"),
            "tevo tpm " + run, changed(port0, port("0", "1", "3"), ">on<", ">0<"),
            portScript("3", "flase")},
           {"flow control as before", set + "&port=0&flow_control=on&auto=0&mode=3", json("0"),
            "tevo " + run, changed(port0, port("on", "0", "3")), portScript("3", "true")},
           {"no values", set + "&port=0", json("0"), "tevo tpm " + run,
            changed(port0, port("", "", ""), ">on<", "><"), portScript("", "true")},
           {"odd", set + "&port=0&flow_control=00&auto=\"&mode=" + odd.text, json("0"),
            "tevo tpm " + run,
            changed(port0, port("00", "&quot;", odd.asAttribute), ">on<", ">00<"),
            portScript(odd.text, "true")},
           {"port 1, applied to 0", set + "&port=1&flow_control=on&mode=m", json("0"),
            "tevo " + run,
            changed(R"(mode="&lt;")", R"(mode="m" phy_admin="" flow_control="on" auto_neg="")"),
            portScript("m", "true")},
           {"no such port", set + "&port=2&flow_control=0", json("1  "), ""},
           {"other action", "cmd_id=23&action=2&port=0", "", ""},
           {"time", aging + "&age_time=60", json(" 0"), "tevo " + run, changed("300", "60"),
            agingScript("60")},
           {"same time", aging + "&age_time=300", json(" 0"), run, {}, agingScript("300")},
           {"odd time", aging + "&age_time=" + odd.text, json(" 0"), "tevo " + run,
            changed("300", odd.asAttribute), agingScript(odd.text)},
           {"other action of time", "cmd_id=25&action=3&age_time=60", "", ""},
       }) {
    check(c);
  }
}

}  // namespace
}  // namespace onu::test
