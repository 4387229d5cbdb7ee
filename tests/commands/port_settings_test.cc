// Commands 23 and 25: ports, MAC ageing. Stored first, then applied.

#include "tests/support/commands.h"

namespace onu::test {
namespace {

// Port 0 as it is stored; its phy_admin gets lost.
std::string port(const std::string& flow, const std::string& negotiate, const std::string& mode) {
  return "\"\" flow_control=\"" + flow + "\" auto_neg=\"" + negotiate + "\" mode=\"" + mode + "\"";
}

// The script for the switch: "flase" is the word that the command shell gets.
std::string applied(const std::string& mode, const std::string& flow) {
  return "tpm\nconfig\nport autoneg 0 WAN true " + mode + "\nport fc 0 WAN " + flow +
         "\n\n\nquit\n";
}

}  // namespace

TEST_F(Commands, PortSettings) {
  const std::string port0 = R"("p0" flow_control="f0" auto_neg="a0" mode="m0"|)";
  const std::string set = "cmd_id=23&action=1";
  checkWithoutValues({{"cmd_id=23", "[]"}, {set + "&port=0&flow_control=1", "1  "}});
  check({
      {"cmd_id=23",
       R"([ {auto:"a0",flow_control:"f0",link:"net_up",mode_max:"x0",phy:"p0",port_id:"0",)"
       R"(work_mode:"m0"},{auto:"",flow_control:"",link:"net_up",mode_max:"",phy:"",)"
       R"(port_id:"1",work_mode:"<"}])"},
      {set + "&port=0&flow_control=0&auto=1&mode=3", "0", "tevo tpm " + kRun,
       port0 + port("0", "1", "3") + "|>on<|>0<", applied("3", "flase")},
      {set + "&port=0&flow_control=on&auto=0&mode=m0", "0", "tevo " + kRun,
       port0 + port("on", "0", "m0"), applied("m0", "true")},
      {set + "&port=0&flow_control=00&auto=\"&mode=" + kOdd.text, "0", "tevo tpm " + kRun,
       port0 + port("00", "&quot;", kOdd.asAttribute) + "|>on<|>00<", applied(kOdd.text, "true")},
      {set + "&port=0", "0", "tevo tpm " + kRun, port0 + port("", "", "") + "|>on<|><",
       applied("", "true")},
      // Port 1 is applied to port 0 as well.
      {set + "&port=1&flow_control=on&mode=m", "0", "tevo " + kRun,
       R"(mode="&lt;"|mode="m" phy_admin="" flow_control="on" auto_neg="")", applied("m", "true")},
      {set + "&port=2&flow_control=0", "1  "},
      {"cmd_id=23&action=2&port=0", ""},
  });
  check({{set + "&port=1&flow_control=0&mode=m", "0", "tevo " + kRun,
          R"(mode="&lt;"|mode="m" phy_admin="" flow_control="0" auto_neg="")",
          applied("m", "flase")}},
        {{"tpm", "<t><flow_control/></t>"}});
}

TEST_F(Commands, MacAging) {
  const std::string set = "cmd_id=25&action=1&age_time=";
  const std::string line = "port mac_aging_time 0 UNI_0 ";
  checkWithoutValues({{"cmd_id=25", "1"}, {set + "1", " 1"}});
  check({
      {"cmd_id=25", "{aging_time:\"300\"}"},
      {set + "60", " 0", "tevo " + kRun, "300|60", eoam(line + "60")},
      {set + "300", " 0", kRun, "", eoam(line + "300")},
      {set + kOdd.text, " 0", "tevo " + kRun, "300|" + kOdd.asAttribute, eoam(line + kOdd.text)},
      {"cmd_id=25&action=2&age_time=1", ""},
  });
  check({{"cmd_id=25", "{aging_time:\"8\"}"}},
        {{"tevo",
          "<c><mac_aging_time><eth_port>0</eth_port><eth_port time='9'>1</eth_port>"
          "<eth_port time='8'>0</eth_port><eth_port time='7'>0</eth_port></mac_aging_time></c>"}});
}

}  // namespace onu::test
