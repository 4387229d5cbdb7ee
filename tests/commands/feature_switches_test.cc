#include "tests/support/unit.h"

namespace onu::test {

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

}  // namespace onu::test
