// The CGI program built with ONU_GUARD beside the shipped one: what values do to a shell and to the
// command shell.

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kGuardedCgi = "/build/guarded/onu-cgi";
const std::string kRefused = errorPage(400, "read request fail");

// A request with a value in the place of each %, and the line with it that then reaches a shell, of
// the command itself or of the next start, or else the command shell.
struct Injection {
  const char* request;
  const char* line;
  bool toShell = false;
};
constexpr Injection kInjections[] = {
    {"cmd_id=5&action=1&sn=1&loid=%&password=p&fec_mode=1", "onu loid %  p"},
    {"cmd_id=6&action=1&ip=10.0.0.1%&netmask=255.0.0.0",
     "ifconfig eth0 10.0.0.1% netmask 255.0.0.0 up", true},
    {"cmd_id=22&action=1&portId=%&mode=1", "port vlan transparent %"},
    {"cmd_id=23&action=1&port=0&flow_control=1&auto=1&mode=%", "port autoneg 0 WAN true %"},
    {"cmd_id=25&action=1&age_time=%", "port mac_aging_time 0 UNI_0 %"},
    {"cmd_id=30&action=1&bs=0&bs_thresh=%",
     "echo 0 us UNI_ANY 1 % 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_queue_set",
     true},
};

std::string with(std::string text, const std::string& value) {
  return text.replace(text.find('%'), 1, value);
}

// All that comes of a request on a new unit and of the next start, which takes the address up: the
// reply, what the shells were given, the files.
std::string traces(const std::string& program, const Request& request) {
  Unit::reset();
  std::string all = Unit::run(program + "; /usr/sbin/onu-init", request).out;
  all += "\n" + readFile("/record/commands") + "\n" + readFile("/record/clish") + "\n";
  return all + Unit::files();
}

TEST_F(Unit, GuardStopsWhatReachesTheShellsWithoutIt) {
  const std::string foreign = "/tmp/foreign";  // made by every payload that a shell runs
  const std::string refused = kRefused + traces(":", {});
  for (const Injection& injection : kInjections) {
    // Each runs a command of its own where a shell reads it; a line end does in the command shell.
    for (const char* payload :
         {";touch /tmp/foreign;", "|touch /tmp/foreign|cat", "$(touch /tmp/foreign)",
          "`touch /tmp/foreign`", "\ntouch /tmp/foreign\n", ">/tmp/foreign"}) {
      const std::string text = with(injection.request, payload);
      EXPECT_EQ(traces(kGuardedCgi, post(text)), refused) << text;
      EXPECT_NE(traces(kCgi, post(text)).find(with(injection.line, payload)), std::string::npos)
          << text;
      EXPECT_EQ(exists(foreign), injection.toShell) << text;
    }
    const Request harmless = post(with(injection.request, ".7:a-b_c,@%+/^ \xC3\xA4"));
    EXPECT_EQ(traces(kGuardedCgi, harmless), traces(kCgi, harmless)) << harmless.body;
  }
  EXPECT_EQ(traces(kGuardedCgi, upload("cmd_id=21&update_type=1;", "--x\r\n")), refused);
  EXPECT_EQ(run(kGuardedCgi, get("")).out, errorPage(404, "processor is not find"));
}

TEST_F(Unit, GuardRefusesTheseBytesAndNoOthers) {
  const std::string active = "\"'\\`$;|<>(){}*?[]!#~\x7F";
  for (int byte = 1; byte < 256; ++byte) {  // a zero byte ends the text
    const char c = static_cast<char>(byte);
    const bool refused = byte < ' ' || active.find(c) != std::string::npos;
    const std::string text = std::string("cmd_id=1&username=admin&password=a") + c + "b";
    EXPECT_EQ(run(kGuardedCgi, post(text)).out, refused ? kRefused : json("2")) << byte;
  }
  for (const char* text : {"&cmd_id=1", "cmd_id=1&", "cmd_id=1&&username=admin", "&"}) {
    EXPECT_EQ(run(kGuardedCgi, get(text)).out, kRefused) << text;
  }
}

}  // namespace
}  // namespace onu::test
