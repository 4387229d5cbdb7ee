#include "tests/support/unit.h"

namespace onu::test {
namespace {

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

TEST_F(Unit, Commands6And16AddressAndMtu) {
  const std::string ip = "cmd_id=6&action=1";
  const std::string mtu = "cmd_id=16&action=1";
  const std::string refused = errorPage(405, "set ip fail");
  const std::string ten = ip + "&ip=10.0.0.10&netmask=255.0.0.0";
  checkWithoutValues({{"cmd_id=6", R"({cur_ip:"",cur_netmask:"",ip:"",netmask:""})"},
                      {ten, refused},
                      {"cmd_id=16", R"({ipv4DsMtu:"",ipv4UsMtu:"",ipv4pppoeUsMtu:""})"},
                      {mtu + "&ipv4DsMtu=1", errorPage(405, "set mtu fail")}});
  check({{"cmd_id=6", R"({cur_ip:"192.168.1.1",cur_netmask:"255.255.255.0",ip:"192.168.1.1",)"
                      R"(netmask:"255.255.255.0"})"},
         {ip + "&ip=192.168.1.1&netmask=255.255.255.0", "0"},
         {ip + "&netmask=12345678&ip=" + kOdd.text, "0", "tevo ",
          "192.168.1.1|" + kOdd.asText + "|255.255.255.0|12345678"},
         {ip + "&ip=10.0.0.1&netmask=255.255.255.0", "0", "tevo ", "192.168.1.1|10.0.0.1"},
         {ip + "&ip=1.1.1.1&netmask=255.0.0.0", refused},
         {ip + "&ip=10.0.0.10&netmask=255.0.0", refused},
         {"cmd_id=16", R"({ipv4DsMtu:"ds",ipv4UsMtu:"us",ipv4pppoeUsMtu:"po"})"},
         {mtu + "&ipv4DsMtu=1&ipv4UsMtu=2&ipv4pppoeUsMtu=" + kOdd.text, "0", "tpm ",
          ">e<|>1<|>ds<|>1<|>us<|>2<|>po<|>" + kOdd.asText + "<"}});
  // The message of the settings stands in front of the page.
  check({{ten, "set ip address type  error\n" + refused}},
        {{"tevo", "<x><ipInfo><netMask/></ipInfo></x>"}});
  // Limits that the file lacks are not added; it is written though nothing changes.
  check({{mtu + "&ipv4UsMtu=7", "0", "tpm "}},
        {{"tpm", "<t><mtu_setting><ipv4_mtu_us>7</ipv4_mtu_us></mtu_setting></t>"}});
}

TEST_F(Unit, Command23PortIsStoredThenApplied) {
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

TEST_F(Unit, Command25MacAging) {
  const std::string set = "cmd_id=25&action=1&age_time=";
  const std::string line = "port mac_aging_time 0 UNI_0 ";
  checkWithoutValues({{"cmd_id=25", "1"}, {set + "1", " 1"}});
  check(
      {{"cmd_id=25", "{aging_time:\"300\"}"},
       {set + "300", " 0", kRun, "", eoam(line + "300")},
       {set + kOdd.text, " 0", "tevo " + kRun, "300|" + kOdd.asAttribute, eoam(line + kOdd.text)}});
  check({{"cmd_id=25", "{aging_time:\"8\"}"},
         {set + "9", " 0", "tevo " + kRun, "port>0|port time=\"9\">0", eoam(line + "9")}},
        {{"tevo", R"(<c><mac_aging_time><eth_port>0</eth_port><eth_port time="9">1</eth_port>
<eth_port time="8">0</eth_port><eth_port time="7">0</eth_port></mac_aging_time></c>)"}});
}

}  // namespace onu::test
