// What is only stored: accounts (1, 19, 20), address and MTU (6, 16), switches (14, 17, 24).

#include "tests/support/unit.h"

namespace onu::test {

TEST_F(Unit, Accounts) {
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

TEST_F(Unit, AddressAndMtu) {
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

TEST_F(Unit, LoopDetectionMulticastPortIsolation) {
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

}  // namespace onu::test
