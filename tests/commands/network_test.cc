// Commands 6 and 16: IP address, MTU.

#include "tests/support/commands.h"

namespace onu::test {

TEST_F(Commands, Network) {
  const std::string ip = "cmd_id=6&action=1";
  const std::string mtu = "cmd_id=16&action=1";
  const std::string refused = errorPage(405, "set ip fail");
  const std::string ten = ip + "&ip=10.0.0.10&netmask=255.0.0.0";
  checkWithoutValues({{"cmd_id=6", R"({cur_ip:"",cur_netmask:"",ip:"",netmask:""})"},
                      {ten, refused},
                      {"cmd_id=16", R"({ipv4DsMtu:"",ipv4UsMtu:"",ipv4pppoeUsMtu:""})"},
                      {mtu + "&ipv4DsMtu=1", errorPage(405, "set mtu fail")}});
  check({
      {"cmd_id=6", R"({cur_ip:"192.168.1.1",cur_netmask:"255.255.255.0",ip:"192.168.1.1",)"
                   R"(netmask:"255.255.255.0"})"},
      {ip + "&ip=192.168.1.1&netmask=255.255.255.0", "0"},
      {ip + "&netmask=12345678&ip=" + kOdd.text, "0", "tevo ",
       "192.168.1.1|" + kOdd.asText + "|255.255.255.0|12345678"},
      {ip + "&ip=10.0.0.1&netmask=255.255.255.0", "0", "tevo ", "192.168.1.1|10.0.0.1"},
      {ip + "&ip=1.1.1.1&netmask=255.0.0.0", refused},
      {ip + "&ip=10.0.0.10&netmask=255.0.0", refused},
      {"cmd_id=6&action=2&ip=10.0.0.10&netmask=255.0.0.0", ""},
      {"cmd_id=16", R"({ipv4DsMtu:"ds",ipv4UsMtu:"us",ipv4pppoeUsMtu:"po"})"},
      {mtu + "&ipv4DsMtu=1&ipv4UsMtu=2&ipv4pppoeUsMtu=" + kOdd.text, "0", "tpm ",
       ">e<|>1<|>ds<|>1<|>us<|>2<|>po<|>" + kOdd.asText + "<"},
      {"cmd_id=16&action=2&ipv4DsMtu=1", ""},
  });
  // The message of the settings stands in front of the page.
  check({{ten, "set ip address type  error\n" + refused}},
        {{"tevo", "<x><ipInfo><netMask/></ipInfo></x>"}});
  // Limits that the file lacks are not added; it is written though nothing changes.
  check({{mtu + "&ipv4UsMtu=7", "0", "tpm "}},
        {{"tpm", "<t><mtu_setting><ipv4_mtu_us>7</ipv4_mtu_us></mtu_setting></t>"}});
}

}  // namespace onu::test
