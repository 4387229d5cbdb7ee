// The CGI program built with ONU_GUARD beside the shipped one: what values do to a shell and to the
// command shell.

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kGuardedCgi = "/build/guarded/onu-cgi";
constexpr const char* kForeign = "/tmp/foreign";  // made by every payload that a shell runs
const std::string kRefused = errorPage(400, "read request fail");

// A request with a value in the place of each %, and the line with it that then reaches a shell, of
// the command itself or of the next start, or the command shell.
struct Injection {
  const char* request;
  const char* line;
};
const std::vector<Injection> kInjections = {
    {"cmd_id=5&action=1&sn=1&loid=%&password=p&fec_mode=1", "onu loid %  p"},
    {"cmd_id=6&action=1&ip=10.0.0.1%&netmask=255.0.0.0",
     "ifconfig eth0 10.0.0.1% netmask 255.0.0.0 up"},
    {"cmd_id=22&action=1&portId=%&mode=1", "port vlan transparent %"},
    {"cmd_id=23&action=1&port=0&flow_control=1&auto=1&mode=%", "port autoneg 0 WAN true %"},
    {"cmd_id=25&action=1&age_time=%", "port mac_aging_time 0 UNI_0 %"},
    {"cmd_id=30&action=1&bs=0&bs_thresh=%",
     "echo 0 us UNI_ANY 1 % 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_queue_set"},
};

std::string with(std::string text, const std::string& value) {
  return text.replace(text.find('%'), 1, value);
}

// All files of the unit that hold settings, or that a request leaves behind.
std::string files() {
  std::string all;
  for (const char* folder : {"/etc/xml_params", "/var/tevo/website/www/xml", "/tmp"}) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      all += entry.path().string() + "\n" + readFile(entry.path()) + "\n";
    }
  }
  return all;
}

class Guard : public Unit {
 protected:
  // The request on a new unit, and the next start, which takes the address up.
  static Outcome runAndStart(const char* program, const std::string& text) {
    reset();
    Outcome outcome = run(program, {}, post(text));
    const Outcome start = run("/usr/sbin/onu-init", {});
    outcome.commands.insert(outcome.commands.end(), start.commands.begin(), start.commands.end());
    return outcome;
  }

  static void expectRefused(const Request& request, const std::string& label) {
    const std::string before = files();
    const Outcome outcome = run(kGuardedCgi, {}, request);
    EXPECT_EQ(outcome.out, kRefused) << label;
    EXPECT_TRUE(outcome.commands.empty() && outcome.scripts.empty()) << label;
    EXPECT_EQ(files(), before) << label;
  }
};

TEST_F(Guard, StopsWhatReachesTheShellsWithoutIt) {
  for (const Injection& injection : kInjections) {
    // Each runs a command of its own where a shell reads it; a line end does in the command shell.
    for (const char* payload :
         {";touch /tmp/foreign;", "|touch /tmp/foreign|cat", "$(touch /tmp/foreign)",
          "`touch /tmp/foreign`", "\ntouch /tmp/foreign\n", ">/tmp/foreign"}) {
      const std::string text = with(injection.request, payload);
      expectRefused(post(text), text);
      const Outcome plain = runAndStart(kCgi, text);
      std::string lines = "\n";
      for (const Texts& given : {plain.scripts, plain.commands}) {
        for (const std::string& one : given) {
          lines += one + "\n";
        }
      }
      EXPECT_NE(lines.find("\n" + with(injection.line, payload) + "\n"), std::string::npos) << text;
      EXPECT_EQ(exists(kForeign), plain.scripts.empty()) << text;
    }
  }
  expectRefused(upload("cmd_id=21&update_type=1;", "--x\r\n"), "upload");
}

TEST_F(Guard, HarmlessRequestsAreAnsweredAsWithoutIt) {
  for (const Injection& injection : kInjections) {
    const std::string text = with(injection.request, ".7:a-b_c,@%+/^ \xC3\xA4");
    const Outcome plain = runAndStart(kCgi, text);
    const std::string after = files();
    const Outcome guarded = runAndStart(kGuardedCgi, text);
    EXPECT_EQ(guarded.out, plain.out) << text;
    EXPECT_EQ(guarded.commands, plain.commands) << text;
    EXPECT_EQ(guarded.scripts, plain.scripts) << text;
    EXPECT_EQ(files(), after) << text;
  }
  EXPECT_EQ(run(kGuardedCgi, {}, get("")).out, errorPage(404, "processor is not find"));
}

TEST_F(Guard, RefusesTheseBytesAndNoOthers) {
  const std::string active = "\"'\\`$;|<>(){}*?[]!#~\x7F";
  for (int byte = 1; byte < 256; ++byte) {  // a zero byte ends the text
    const char c = static_cast<char>(byte);
    const bool refused = byte < ' ' || active.find(c) != std::string::npos;
    const std::string text = std::string("cmd_id=1&username=admin&password=a") + c + "b";
    EXPECT_EQ(run(kGuardedCgi, {}, post(text)).out, refused ? kRefused : json("2")) << byte;
  }
  for (const char* text : {"&cmd_id=1", "cmd_id=1&", "cmd_id=1&&username=admin", "&"}) {
    EXPECT_EQ(run(kGuardedCgi, {}, get(text)).out, kRefused) << text;
  }
}

}  // namespace
}  // namespace onu::test
