#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

class Vlan : public SettingsUnit {};

TEST_F(Vlan, ReadsTheFirstPort) {
  check({"", "cmd_id=22&portId=1",
         json("[{def_vid:\"d0\",mode:\"v0\",portId:\"0\",vidSerial:\"l0\"}]"), ""});
  checkWithoutValues("cmd_id=22&action=0", json("[]"));
}

// A request for port 1, its command for clish and what it changes: nothing without a mode.
SettingsCase store(const char* label, const std::string& values, const std::string& command,
                   const std::string& attributes) {
  const bool good = !attributes.empty();
  SettingsCase c = {label, "cmd_id=22&action=1" + values, json(good ? "0" : "1"), kClish};
  if (good) {
    c.written += "tevo ";
    c.changes = changed(R"(mode="v1" default_vid="d1" vid_sum="n1" vid_serial="l1")", attributes);
  }
  c.runs = {"eoam\n" + command + "\n\nquit\n"};
  return c;
}

TEST_F(Vlan, IsAppliedThenStored) {
  const OddText odd;
  const std::string list = "&def_vid=100&vid_sum=2&vid_serial=200,300";
  const std::string rest = R"( default_vid="100" vid_sum="2" vid_serial="200,300")";
  const std::string kept = R"( default_vid="d1" vid_sum="" vid_serial="")";
  for (const SettingsCase& c : {
           store("1", "&portId=1&mode=1" + list, "port vlan transparent 1", "mode=\"1\"" + rest),
           store("2", "&portId=1&mode=2" + list, "port vlan tag 1  100", "mode=\"2\"" + rest),
           store("3", "&portId=1&mode=3" + list, "port vlan translation  1  100 2  200,300",
                 "mode=\"3\"" + rest),
           store("4", "&portId=1&mode=4" + list, "port vlan trunk  1  100   2  200,300",
                 "mode=\"4\"" + rest),
           store("2 and more", "&portId=1&mode= 2x", "port vlan tag 1  ", "mode=\" 2x\"" + kept),
           store("odd", "&portId=1&mode=4&vid_serial=" + odd.text,
                 "port vlan trunk  1       " + odd.text,
                 R"(mode="4" default_vid="d1" vid_sum="" vid_serial=")" + odd.asAttribute + "\""),
           store("0", "&portId=1&mode=0" + list, "", ""),
           store("5", "&portId=1&mode=5" + list, "", ""),
           store("negative", "&portId=1&mode=-1" + list, "", ""),
           store("beyond 32 bits", "&portId=1&mode=4294967297", "", ""),
           store("a word", "&portId=1&mode=abc", "", ""),
           store("nothing", "", "", ""),
       }) {
    check(c);
  }
  check({"no such port",
         "cmd_id=22&action=1&portId=2&mode=1",
         json("0"),
         kClish,
         {},
         {"eoam\nport vlan transparent 2\n\nquit\n"}});
  check({"other action", "cmd_id=22&action=2&portId=0&mode=1", json("1"), ""});
}

TEST_F(Vlan, FailsAfterTheSwitchHasTaken) {
  checkWithoutValues("cmd_id=22&action=1&portId=0&mode=1", json("1"));
  EXPECT_EQ(cgi(get("cmd_id=22&action=1&portId=0&mode=1")).scripts,
            std::vector<std::string>{"eoam\nport vlan transparent 0\n\nquit\n"});
}

}  // namespace
}  // namespace onu::test
