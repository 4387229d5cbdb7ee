// The CGI program built with ONU_GUARD beside the shipped one: what values do to a shell and to the
// command shell.

#include <algorithm>
#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kGuardedCgi = "/build/guarded/onu-cgi";
constexpr const char* kForeign = "/tmp/foreign";  // made by every payload that a shell runs

// A request with a value in the place of each %, and what then reaches a shell: `command`, of the
// command itself or of the next start, else a line of the script fed to clish.
struct Injection {
  const char* request;
  const char* command;
  const char* line = "";
};
const std::vector<Injection> kInjections = {
    {"cmd_id=5&action=1&sn=1&loid=%&password=p&fec_mode=1", "", "onu loid %  p"},
    {"cmd_id=5&action=1&sn=1&loid=l&password=%&fec_mode=1", "", "onu loid l  %"},
    {"cmd_id=6&action=1&ip=10.0.0.1%&netmask=255.0.0.0",
     "ifconfig eth0 10.0.0.1% netmask 255.0.0.0 up"},
    {"cmd_id=6&action=1&ip=10.0.0.1&netmask=255.0.0.0%",
     "ifconfig eth0 10.0.0.1 netmask 255.0.0.0% up"},
    {"cmd_id=22&action=1&portId=%&mode=1", "", "port vlan transparent %"},
    {"cmd_id=22&action=1&portId=1&mode=2&def_vid=%", "", "port vlan tag 1  %"},
    {"cmd_id=22&action=1&portId=1&mode=3&def_vid=2&vid_sum=%&vid_serial=4", "",
     "port vlan translation  1  2 %  4"},
    {"cmd_id=22&action=1&portId=1&mode=4&def_vid=2&vid_sum=3&vid_serial=%", "",
     "port vlan trunk  1  2   3  %"},
    {"cmd_id=23&action=1&port=0&flow_control=1&auto=1&mode=%", "", "port autoneg 0 WAN true %"},
    {"cmd_id=25&action=1&age_time=%", "", "port mac_aging_time 0 UNI_0 %"},
    {"cmd_id=30&action=1&bs=0&bs_thresh=%",
     "echo 0 us UNI_ANY 1 % 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_queue_set"},
    {"cmd_id=30&action=1&bs=1&bs_thresh=%",
     "echo 0 ds UNI_ANY 7 % 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_queue_set"},
    {"cmd_id=30&action=1&bs=2&bs_thresh=%",
     "echo 0 us UNI_ANY  % 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_if_set"},
};

// Each runs a command of its own where a shell reads it; a line end does in the command shell too.
const Texts kPayloads = {
    ";touch /tmp/foreign;", "|touch /tmp/foreign|cat", "$(touch /tmp/foreign)",
    "`touch /tmp/foreign`", "\ntouch /tmp/foreign\n",  ">/tmp/foreign",
};

std::string with(std::string text, const std::string& value) {
  const std::size_t at = text.find('%');
  return at == std::string::npos ? text : text.replace(at, 1, value);
}

bool contains(const Texts& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
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
  // The request, and the next start, which takes the address up.
  static Outcome runAndStart(const char* program, const std::string& text) {
    Outcome outcome = run(program, {}, post(text));
    const Outcome start = run("/usr/sbin/onu-init", {});
    outcome.commands.insert(outcome.commands.end(), start.commands.begin(), start.commands.end());
    return outcome;
  }
};

TEST_F(Guard, WithoutItValuesReachTheShellsAsTheyStand) {
  for (const Injection& injection : kInjections) {
    reset();
    for (const std::string& payload : kPayloads) {
      std::filesystem::remove(kForeign);
      const std::string text = with(injection.request, payload);
      const Outcome outcome = runAndStart(kCgi, text);
      if (injection.line[0] == '\0') {
        EXPECT_TRUE(contains(outcome.commands, with(injection.command, payload))) << text;
        EXPECT_TRUE(exists(kForeign)) << text;
      } else {
        ASSERT_FALSE(outcome.scripts.empty()) << text;
        EXPECT_NE(outcome.scripts[0].find("\n" + with(injection.line, payload) + "\n"),
                  std::string::npos)
            << text;
      }
    }
  }
}

TEST_F(Guard, WithItNothingHappens) {
  const std::string before = files();
  const std::string refused = errorPage(400, "read request fail");
  for (const Injection& injection : kInjections) {
    for (const std::string& payload : kPayloads) {
      const std::string text = with(injection.request, payload);
      const Outcome outcome = run(kGuardedCgi, {}, post(text));
      EXPECT_EQ(outcome.out, refused) << text;
      EXPECT_EQ(outcome.commands, Texts()) << text;
      EXPECT_EQ(outcome.scripts, Texts()) << text;
      EXPECT_EQ(files(), before) << text;
    }
  }
  const Outcome outcome = run(kGuardedCgi, {}, upload("cmd_id=21&update_type=1;", "--x\r\n"));
  EXPECT_EQ(outcome.out, refused);
  EXPECT_EQ(outcome.commands, Texts());
  EXPECT_EQ(files(), before);
}

TEST_F(Guard, HarmlessRequestsAreAnsweredAsWithoutIt) {
  for (const Injection& injection : kInjections) {
    const std::string text = with(injection.request, ".7:a-b_c,@%+/^ \xC3\xA4");
    reset();
    const Outcome plain = runAndStart(kCgi, text);
    const std::string after = files();
    reset();
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
    EXPECT_EQ(run(kGuardedCgi, {}, post(text)).out,
              refused ? errorPage(400, "read request fail") : json("2"))
        << "byte " << byte;
  }
  for (const char* text : {"&cmd_id=1", "cmd_id=1&", "cmd_id=1&&username=admin", "&"}) {
    EXPECT_EQ(run(kGuardedCgi, {}, get(text)).out, errorPage(400, "read request fail")) << text;
  }
}

}  // namespace
}  // namespace onu::test
