#include "device/cli_runner.h"

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

class Clish : public Unit {};

TEST_F(Clish, RunsAScript) {
  writeFile("/tmp/TempFile", "a longer script that another process has left behind\n");
  CliRunner::run("eoam", "port vlan transparent\nx");
  EXPECT_EQ(readFile("/record/clish"), "eoam\nport vlan transparent\nx\n\nquit\n\0"s);
  EXPECT_FALSE(exists("/tmp/TempFile"));
  std::filesystem::create_directory("/tmp/TempFile");
  CliRunner::run("eoam", "no room for a script");
  const std::string commands = "clish </tmp/TempFile >/dev/null \0rm -f /tmp/TempFile\0"s;
  EXPECT_EQ(readFile("/record/commands"), commands + commands);
}

TEST_F(Clish, AsksForTheFecMode) {
  struct Case {
    const char* label;
    std::string answer;
    bool enabled;
  };
  for (const Case& c : {
           Case{"factory", readFile("/etc/clish_fec_mode"), true},
           {"far down, inside a line", std::string(100000, '\n') + "> FEC Enabled.", true},
           {"across lines", "FEC Disabled\nFEC\nEnabled\n", false},
           {"no answer", "", false},
       }) {
    std::filesystem::remove("/record/commands");
    writeFile("/etc/clish_fec_mode", c.answer);
    EXPECT_EQ(CliRunner::isFecEnabled(), c.enabled) << c.label;
    EXPECT_EQ(readFile("/record/commands"),
              "clish </tmp/TmpFile > /tmp/info_file\0rm -f /tmp/TmpFile\0rm -f /tmp/info_file\0"s);
    EXPECT_FALSE(exists("/tmp/TmpFile") || exists("/tmp/info_file")) << c.label;
  }
  const std::string script = "eoam\nshow pon fec_mode\n\nquit\n\0"s;
  EXPECT_EQ(readFile("/record/clish"), script + script + script + script);

  std::filesystem::create_symlink("/nowhere/at/all", "/tmp/info_file");
  EXPECT_FALSE(CliRunner::isFecEnabled()) << "no file";
  EXPECT_TRUE(std::filesystem::is_symlink("/tmp/info_file")) << "none to remove";
}

}  // namespace
}  // namespace onu::test
