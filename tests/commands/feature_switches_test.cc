#include <gtest/gtest.h>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kEoam = "/etc/xml_params/eoam_xml_cfg_file.xml";
constexpr const char* kOmci = "/etc/xml_params/omci_xml_cfg_file.xml";
constexpr const char* kLoopFail = "set port loopdetect fail";

std::string multicast(const std::string& mode) {
  return "<ONU_MULTICAST><oam_multicast_switch>" + mode + "</oam_multicast_switch></ONU_MULTICAST>";
}
std::string loops(const std::string& port0, const std::string& port1) {
  return "<ONU_LOOPDETECT><port loopdetect=\"" + port0 + "\">0</port><port loopdetect=\"" + port1 +
         "\">1</port></ONU_LOOPDETECT>";
}
std::string isolation(const std::string& attributes) {
  return "<OMCI_MIB><ethPortIsolated" + attributes + "></ethPortIsolated></OMCI_MIB>";
}

struct Case {
  const char* label;
  std::string before;  // inside the root element
  const char* query;
  std::string reply;
  std::string after;  // empty: not written
};

class FeatureSwitches : public Unit {
 protected:
  static void check(const char* path, const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      const std::string before = "<r><!-- lost in a rewrite -->" + c.before + "</r>";
      writeFile(path, before);
      EXPECT_EQ(reply(c.query), c.reply) << c.label;
      EXPECT_EQ(readFile(path), c.after.empty() ? before : "<r>" + c.after + "</r>") << c.label;
    }
  }
};

TEST_F(FeatureSwitches, LoopDetection) {
  const std::string off = json("[{loop_detect:\"0\"}]");
  const std::string on = json("[{loop_detect:\"1\"}]");
  const std::string b = loops("1", "2");
  check(
      kEoam,
      {
          {"1 is read as 0", b, "cmd_id=14", off, ""},
          {"always the first port", loops("2", "1"), "cmd_id=14&action=0&port=1", on, ""},
          {"almost 1", loops(" 1", "1"), "cmd_id=14", on, ""},
          {"attribute missing", "<ONU_LOOPDETECT><port/></ONU_LOOPDETECT>", "cmd_id=14", on, ""},
          {"no group", "", "cmd_id=14", on, ""},
          {"0 is stored as 1", b, "cmd_id=14&action=1&port=1&loop_detect=0", json("0"),
           loops("1", "1")},
          {"yes as 2", b, "cmd_id=14&action=1&port=0&loop_detect=yes", json("0"), loops("2", "2")},
          {"00 as 2", b, "cmd_id=14&action=1&port=0&loop_detect=00", json("0"), loops("2", "2")},
          {"nothing as 2", b, "cmd_id=14&action=1", json("0"), loops("2", "2")},
          {"same", b, "cmd_id=14&action=1&port=1&loop_detect=5", json("0"), ""},
          {"no such port", b, "cmd_id=14&action=1&port=2", errorPage(405, kLoopFail), ""},
          {"no group to store", "", "cmd_id=14&action=1&port=0", errorPage(405, kLoopFail), ""},
          {"other action", b, "cmd_id=14&action=2&port=0", "", ""},
      });
}

TEST_F(FeatureSwitches, MulticastMode) {
  check(kEoam,
        {
            {"as it is", multicast("a&lt;\"b"), "cmd_id=17", json("{mc_mode:\"a<\"b\"}"), ""},
            {"no group", "", "cmd_id=17&action=0", json("{mc_mode:\"\"}"), ""},
            {"as it comes", multicast("7"), "cmd_id=17&action=1&mc_mode=x%20y", json("0"),
             multicast("x%20y")},
            {"nothing", multicast("7"), "cmd_id=17&action=1", json("0"), multicast("")},
            {"same", multicast("7"), "cmd_id=17&action=1&mc_mode=7", json("0"), ""},
            {"no group to store", "", "cmd_id=17&action=1&mc_mode=7",
             errorPage(405, "set mtu fail"), ""},
            {"other action", multicast("7"), "cmd_id=17&action=-1&mc_mode=1", "", ""},
        });
}

TEST_F(FeatureSwitches, PortIsolation) {
  const std::string on = isolation(" a=\"&quot;\" enabled=\"true\"");
  const std::string off = isolation(" a=\"&quot;\" enabled=\"false\"");
  check(kOmci, {
                   {"true is read as 1", on, "cmd_id=24", json("{iso:\"1\"}"), ""},
                   {"anything else as 0", isolation(" enabled=\"TRUE\""), "cmd_id=24",
                    json("{iso:\"0\"}"), ""},
                   {"nothing as 0", isolation(""), "cmd_id=24", json("{iso:\"0\"}"), ""},
                   {"1 is stored as true", off, "cmd_id=24&action=1&iso=1", json("0"), on},
                   {"true as false", on, "cmd_id=24&action=1&iso=true", json("0"), off},
                   {"nothing as false", on, "cmd_id=24&action=1", json("0"), off},
                   {"same", on, "cmd_id=24&action=1&iso=1", json("0"), ""},
                   {"never said", isolation(""), "cmd_id=24&action=1&iso=1", json("1"), ""},
                   {"no element", "<OMCI_MIB/>", "cmd_id=24&action=1&iso=1", json("1"), ""},
                   {"other action", off, "cmd_id=24&action=3&iso=1", "", ""},
               });
}

}  // namespace
}  // namespace onu::test
