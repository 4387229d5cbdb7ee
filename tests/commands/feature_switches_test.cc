// Commands 14, 17 and 24: loop detection, multicast, port isolation.

#include "tests/support/commands.h"

namespace onu::test {

TEST_F(Commands, FeatureSwitches) {
  const std::string loop = "loopdetect=\"";
  const std::string refused = errorPage(405, "set port loopdetect fail");
  const std::string set = "cmd_id=14&action=1";
  const std::string mode = "cmd_id=17&action=1";
  const std::string isolate = "cmd_id=24&action=1&iso=1";
  checkWithoutValues({{"cmd_id=14&port=1", "[{loop_detect:\"1\"}]"},
                      {set + "&port=0", refused},
                      {"cmd_id=17", "{mc_mode:\"\"}"},
                      {mode + "&mc_mode=7", errorPage(405, "set mtu fail")},
                      {"cmd_id=24", "{iso:\"0\"}"},
                      {isolate, "1"}});
  check({
      {"cmd_id=14&port=1", "[{loop_detect:\"0\"}]"},
      {set + "&port=1&loop_detect=0", "0", "eoam ", loop + "2|" + loop + "1"},
      {set + "&port=0&loop_detect=00", "0", "eoam ", loop + "1|" + loop + "2"},
      {set, "0", "eoam ", loop + "1|" + loop + "2"},
      {set + "&port=1x&loop_detect=yes", "0"},
      {set + "&port=2", refused},
      {set + "&port=-1", refused},
      {"cmd_id=14&action=2&port=0", ""},
      {"cmd_id=17", "{mc_mode:\"a<\"b\"}"},
      {mode + "&mc_mode=" + kOdd.text, "0", "eoam ", "a&lt;\"b|" + kOdd.asText},
      {mode, "0", "eoam ", ">a&lt;\"b<|><"},
      {mode + "&mc_mode=a<\"b", "0"},
      {"cmd_id=17&action=2&mc_mode=1", ""},
      {"cmd_id=24", "{iso:\"1\"}"},
      {"cmd_id=24&action=1&iso=true", "0", "omci ", "true|false"},
      {isolate, "0"},
      {"cmd_id=24&action=2&iso=0", ""},
  });
  check({{isolate, "0", "omci ", "false|true"}},
        {{"omci",
          "<o><OMCI_MIB><ethPortIsolated enabled=\"false\"></ethPortIsolated></OMCI_MIB></o>"}});
  check({{isolate, "1"}}, {{"omci", "<o><OMCI_MIB><ethPortIsolated/>"}});
}

}  // namespace onu::test
