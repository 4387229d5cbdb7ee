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

}  // namespace

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

}  // namespace onu::test
