// The Ethernet ports: status (4), VLAN (22), settings (23), MAC ageing (25).

#include "tests/support/unit.h"

namespace onu::test {
namespace {

// A VLAN for port 1, its line for the command shell, and what it changes: nothing without a mode.
Case vlan(const std::string& values, const std::string& line, const std::string& attributes) {
  const bool known = !attributes.empty();
  return {"cmd_id=22&action=1&portId=1&mode=" + values, known ? "0" : "1",
          kRun + (known ? "tevo " : ""),
          known ? R"(mode="v1" default_vid="d1" vid_sum="n1" vid_serial="l1"|)" + attributes : "",
          eoam(line)};
}

// Port 0 as it is stored; its phy_admin gets lost.
std::string port0(const std::string& flow, const std::string& negotiate, const std::string& mode) {
  return R"("p0" flow_control="f0" auto_neg="a0" mode="m0"|"" flow_control=")" + flow +
         "\" auto_neg=\"" + negotiate + "\" mode=\"" + mode + "\"";
}

// The script for the switch: "flase" is the word that the command shell gets.
std::string applied(const std::string& mode, const std::string& flow) {
  return "tpm\nconfig\nport autoneg 0 WAN true " + mode + "\nport fc 0 WAN " + flow +
         "\n\n\nquit\n";
}

}  // namespace

TEST_F(Unit, PortStatus) {
  checkWithoutValues(
      {{"cmd_id=4", R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
                    R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
                    R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])"}});
  check({{"cmd_id=4&action=1&port=1",
          R"([{VlanInfo_mode:"v0",VlanInfo_serial:"l0",admin_status:"1",auto_neg:"a0",)"
          R"(default_vid:"d0",fast_leave:"0",link:"1",link_rate:"m0",loop_detect:"0",)"
          R"(max_igmp_group:"32",mc_mode:"a<"b",mc_tag_oper:"0",pause:"f0"}])"}});
}

TEST_F(Unit, VlanIsAppliedThenStored) {
  EXPECT_EQ(cgi(get("cmd_id=22&action=1")).commands,
            (Texts{"clish </tmp/TempFile >/dev/null ", "rm -f /tmp/TempFile"}));
  const std::string port = "cmd_id=22&action=1&portId=";
  checkWithoutValues({{"cmd_id=22&portId=1", "[]"},
                      {port + "0&mode=1", "1", kRun, "", eoam("port vlan transparent 0")}});
  const std::string list = "&def_vid=100&vid_sum=2&vid_serial=200,300";
  const std::string rest = R"( default_vid="100" vid_sum="2" vid_serial="200,300")";
  check({{"cmd_id=22&portId=1", R"([{def_vid:"d0",mode:"v0",portId:"0",vidSerial:"l0"}])"},
         vlan("1" + list, "port vlan transparent 1", "mode=\"1\"" + rest),
         vlan("3" + list, "port vlan translation  1  100 2  200,300", "mode=\"3\"" + rest),
         vlan("4" + list, "port vlan trunk  1  100   2  200,300", "mode=\"4\"" + rest),
         vlan(" 2x&def_vid=7&vid_serial=" + kOdd.text, "port vlan tag 1  7",
              R"(mode=" 2x" default_vid="7" vid_sum="" vid_serial=")" + kOdd.asAttribute + "\""),
         vlan("4&vid_serial=" + kOdd.text, "port vlan trunk  1       " + kOdd.text,
              R"(mode="4" default_vid="d1" vid_sum="" vid_serial=")" + kOdd.asAttribute + "\""),
         vlan("0" + list, "", ""),
         {port + "2&mode=1", "0", kRun, "", eoam("port vlan transparent 2")},
         {"cmd_id=22&action=2&portId=0&mode=1", "1"}});
  // No VLAN is fixed by any port that lacks its own.
  check({{"cmd_id=22", "[]"}},
        {{"tevo", "<c><vlan><port default_vid='1'>0</port><port mode='1'>1</port></vlan></c>"}});
}

TEST_F(Unit, PortSettingsAreStoredThenApplied) {
  const std::string set = "cmd_id=23&action=1&port=";
  const std::string port1 = R"(mode="&lt;"|mode="m" phy_admin="" flow_control=")";
  checkWithoutValues({{"cmd_id=23", "[]"}, {set + "0&flow_control=1", "1  "}});
  check({
      {"cmd_id=23",
       R"([ {auto:"a0",flow_control:"f0",link:"net_up",mode_max:"x0",phy:"p0",port_id:"0",)"
       R"(work_mode:"m0"},{auto:"",flow_control:"",link:"net_up",mode_max:"",phy:"",)"
       R"(port_id:"1",work_mode:"<"}])"},
      {set + "0&flow_control=0&auto=1&mode=3", "0", "tevo tpm " + kRun,
       port0("0", "1", "3") + "|>on<|>0<", applied("3", "flase")},
      {set + "0&flow_control=00&auto=\"&mode=" + kOdd.text, "0", "tevo tpm " + kRun,
       port0("00", "&quot;", kOdd.asAttribute) + "|>on<|>00<", applied(kOdd.text, "true")},
      // Port 1 is applied to port 0 as well.
      {set + "1&flow_control=on&mode=m", "0", "tevo " + kRun, port1 + "on\" auto_neg=\"\"",
       applied("m", "true")},
      {set + "2&flow_control=0", "1  "},
  });
  check({{set + "1&flow_control=0&mode=m", "0", "tevo " + kRun, port1 + "0\" auto_neg=\"\"",
          applied("m", "flase")}},
        {{"tpm", "<t><flow_control/></t>"}});
}

TEST_F(Unit, MacAging) {
  const std::string set = "cmd_id=25&action=1&age_time=";
  const std::string line = "port mac_aging_time 0 UNI_0 ";
  checkWithoutValues({{"cmd_id=25", "1"}, {set + "1", " 1"}});
  check(
      {{"cmd_id=25", "{aging_time:\"300\"}"},
       {set + "300", " 0", kRun, "", eoam(line + "300")},
       {set + kOdd.text, " 0", "tevo " + kRun, "300|" + kOdd.asAttribute, eoam(line + kOdd.text)}});
  check({{"cmd_id=25", "{aging_time:\"8\"}"}},
        {{"tevo",
          "<c><mac_aging_time><eth_port>0</eth_port><eth_port time='9'>1</eth_port>"
          "<eth_port time='8'>0</eth_port><eth_port time='7'>0</eth_port></mac_aging_time></c>"}});
}

}  // namespace onu::test
