// Commands that work on settings files, one or a few in each test.

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

// An object with the values of eight queues, each `letter` and its number.
std::string queues(const std::string& key, const std::string& letter) {
  std::string text = "{";
  for (const char queue : std::string("01234567")) {
    text += key + queue + ":\"" + (letter.empty() ? "" : letter + queue) + "\",";
  }
  text.back() = '}';
  return text;
}

// The commands of one limit, in both directions.
std::string limit(const std::string& words, const std::string& file) {
  const std::string rest =
      " UNI_ANY " + words + " 1536 > /sys/devices/platform/tpm/cfg_traffic/" + file;
  return "echo 0 us" + rest + "|echo 0 ds" + rest;
}

}  // namespace

TEST_F(Unit, Commands1And19And20Accounts) {
  checkWithoutValues({{"cmd_id=1&username=admin&password=pw", "1"},
                      {"cmd_id=19&pwdold=&pwdnew=new", "2"},
                      {"cmd_id=20&pwdold=&pwdnew=new", "2"}});
  check({{"cmd_id=1&username=admin&password=se<cret", "0"},
         {"cmd_id=1&username=admin&password=secret", "2"},
         {"cmd_id=1&action=1&username=user&password=", "0"},
         {"cmd_id=1&username=guest&password=", "0"},
         {"cmd_id=19&pwdold=se<creT&pwdnew=y", "1"},
         {"cmd_id=19&action=0&pwdold=se<cret&pwdnew=y", "0", "tevo ", "se&lt;cret|y"},
         {"cmd_id=20&pwdold=x&pwdnew=y", "1"},
         {"cmd_id=20&pwdold=&pwdnew=", "0"},
         {"cmd_id=20&pwdnew=" + kOdd.text + "&pwdold=", "0", "tevo ",
          "<user><|<user>" + kOdd.asText + "<"}});
}

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

TEST_F(Unit, Commands14And17And24Switches) {
  const std::string one = "loopdetect=\"1";
  const std::string two = "loopdetect=\"2";
  const std::string refused = errorPage(405, "set port loopdetect fail");
  const std::string loop = "cmd_id=14&action=1";
  const std::string mode = "cmd_id=17&action=1";
  const std::string isolate = "cmd_id=24&action=1&iso=1";
  checkWithoutValues({{"cmd_id=14&port=1", "[{loop_detect:\"1\"}]"},
                      {loop + "&port=0", refused},
                      {"cmd_id=17", "{mc_mode:\"\"}"},
                      {mode + "&mc_mode=7", errorPage(405, "set mtu fail")},
                      {"cmd_id=24", "{iso:\"0\"}"},
                      {isolate, "1"}});
  check({{"cmd_id=14&port=1", "[{loop_detect:\"0\"}]"},
         {loop + "&port=1&loop_detect=0", "0", "eoam ", two + "|" + one},
         {loop + "&port=0&loop_detect=00", "0", "eoam ", one + "|" + two},
         {loop, "0", "eoam ", one + "|" + two},
         {loop + "&port=1x&loop_detect=yes", "0"},
         {loop + "&port=2", refused},
         {loop + "&port=-1", refused},
         {"cmd_id=17", "{mc_mode:\"a<\"b\"}"},
         {mode + "&mc_mode=" + kOdd.text, "0", "eoam ", "a&lt;\"b|" + kOdd.asText},
         {mode + "&mc_mode=a<\"b", "0"},
         {"cmd_id=24", "{iso:\"1\"}"},
         {"cmd_id=24&action=1&iso=true", "0", "omci ", "true|false"},
         {isolate, "0"}});
  const std::string omci = "<o><OMCI_MIB><ethPortIsolated";
  check({{isolate, "0", "omci ", "false|true"}},
        {{"omci", omci + " enabled=\"false\"></ethPortIsolated></OMCI_MIB></o>"}});
  check({{isolate, "1"}}, {{"omci", omci + "/>"}});
}

TEST_F(Unit, Command4PortStatus) {
  checkWithoutValues(
      {{"cmd_id=4", R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
                    R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
                    R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])"}});
  check({{"cmd_id=4&action=1&port=1",
          R"([{VlanInfo_mode:"v0",VlanInfo_serial:"l0",admin_status:"1",auto_neg:"a0",)"
          R"(default_vid:"d0",fast_leave:"0",link:"1",link_rate:"m0",loop_detect:"0",)"
          R"(max_igmp_group:"32",mc_mode:"a<"b",mc_tag_oper:"0",pause:"f0"}])"}});
}

TEST_F(Unit, Command22VlanIsAppliedThenStored) {
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
  check({{"cmd_id=25", "{aging_time:\"8\"}"}},
        {{"tevo",
          "<c><mac_aging_time><eth_port>0</eth_port><eth_port time='9'>1</eth_port>"
          "<eth_port time='8'>0</eth_port><eth_port time='7'>0</eth_port></mac_aging_time></c>"}});
}

TEST_F(Unit, Commands27And28Queues) {
  // The parameters, the key of a queue and its value in the file, both without its number.
  for (const auto& [number, queue, value, key, old] : std::vector<std::array<std::string, 5>>{
           {"27", "&que_id=", "&usr_pri=", "queue", "w"},
           {"28&voq_dir=1", "&voq_id=", "&voq_thresh=", "size", "s"},
           {"28&voq_dir=00", "&voq_id=", "&voq_thresh=", "size", "s"},
           {"28&voq_dir=0", "&voq_id=", "&voq_thresh=", "size", "r"}}) {
    const std::string command = "cmd_id=" + number;
    const std::string set = command + "&action=1" + queue;
    const auto changed = [&old = old](const std::string& id) {
      return "\"" + old + id + "|\"" + kOdd.asAttribute;
    };
    checkWithoutValues({{command, "error"}, {set + "0" + value + "1", "1"}});
    check({{command, queues(key, old)},
           {set + "4" + value + old + "4", "0", "tpm "},
           {set + "0" + value + kOdd.text, "0", "tpm ", changed("0")},
           {set + "9" + value + kOdd.text, "0", "tpm ", changed("9")},
           {set + "3<\"\n" + value + kOdd.text, "0", "tpm ", changed("3")},
           {set + "10" + value + "5", "1"},
           {set + "-1" + value + "5", "1"}});
  }
}

TEST_F(Unit, Command26Scheduling) {
  const std::string set = "cmd_id=26&action=1&algo_mode=";
  checkWithoutValues({{"cmd_id=26", "error"}, {set + "1", "0"}});
  check({{"cmd_id=26", "{algo_mode:\"m\"}"},
         {set + kOdd.text, "0", "tpm ", "\"m\"|\"" + kOdd.asAttribute + "\""},
         {set + "m", "0", "tpm "}});

  const std::string start = "<t><port_init><tx_module_parameters><tx_mod></tx_mod>";
  const std::string queue = "<tx_mod><queue_map><queue weight=\"1\"></queue>";
  const std::string end = "</queue_map></tx_mod></tx_module_parameters></port_init></t>";
  check({{"cmd_id=27&action=1&que_id=1&usr_pri=2", "0", "tpm ",
          "<queue></queue>|<queue weight=\"2\"></queue>"}},
        {{"tpm", start + "<tx_mod></tx_mod>" + queue + "<o></o><queue></queue>" + end}});
  // One module too few: nothing is found, and the method is stored nowhere.
  check({{"cmd_id=27&action=1&que_id=0&usr_pri=2", "1"},
         {"cmd_id=27", queues("queue", "")},
         {set + "1", "0", "tpm "}},
        {{"tpm", start + queue + end}});
}

TEST_F(Unit, Command30StormLimit) {
  const std::string queue = "rate_limit_queue_set";
  const std::string all = "rate_limit_if_set";
  const std::string toQueue = "commands " + queue + " commands " + queue + " ";
  const std::string toAll = "commands " + all + " commands " + all + " ";
  const std::string off =
      limit("1 1048568", queue) + "|" + limit("7 1048568", queue) + "|" + limit("1048568", all);
  const std::string set = "cmd_id=30&action=1&bs=";
  const auto port = [](const std::string& mode, const std::string& rate) {
    return "\"b0\"|\"" + mode + "\"|\"t0\"|\"" + rate + "\"";
  };
  const std::string big(65536, '6');
  checkWithoutValues({{"cmd_id=30", "[]"}, {set + "4&bs_thresh=5", "1"}});
  check({
      {"cmd_id=30&action=0", R"([{bc_mode:"b0",rate:"t0"}])"},
      {set + "0&bs_thresh=512", "0", toQueue + "tevo ", port("0", "512"), limit("1 512", queue)},
      {set + "1&bs_thresh=" + big, "0", toQueue + "tevo ", port("1", big),
       limit("7 " + big, queue)},
      {set + "2&bs_thresh=%20\\", "0", toAll + "tevo ", port("2", "%20\\"), limit(" %20\\", all)},
      {set + "3&bs_thresh=512", "0", toQueue + toQueue + toAll + "tevo ", port("3", "512"), off},
      {set + "0", "0", toQueue + "tevo ", port("0", "t0"), limit("1 ", queue)},
      // The shell prints to the page what a line feed cuts off.
      {set + "0&bs_thresh=1\n2", "0 us UNI_ANY 1 1\n0 ds UNI_ANY 1 1\n" + json("0"),
       toQueue + "tevo ", port("0", "1&#xA;2"), limit("1 1\n2", queue)},
      {set + "b0&bs_thresh=" + kOdd.text, "0", "tevo ", port("b0", kOdd.asAttribute)},
  });
}

}  // namespace onu::test
