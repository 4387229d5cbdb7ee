// What no command makes of the device: the question for FEC, results of the readers.

#include <filesystem>

#include "device/cli_runner.h"
#include "device/epon_info.h"
#include "tests/support/unit.h"

namespace onu::test {

using namespace std::string_literals;

TEST_F(Unit, FecModeIsAskedOfTheCommandShell) {
  std::string commands;
  std::string scripts;
  for (const auto& [answer, enabled] : std::vector<std::pair<std::string, bool>>{
           {readFile("/etc/clish_fec_mode"), true},
           {std::string(100000, '\n') + "> FEC Enabled.", true},
           {"FEC Disabled\nFEC\nEnabled\n", false},
       }) {
    writeFile("/etc/clish_fec_mode", answer);
    EXPECT_EQ(CliRunner::isFecEnabled(), enabled) << answer.substr(0, 80);
    EXPECT_TRUE(std::filesystem::is_empty("/tmp")) << answer.substr(0, 80);
    commands += "clish </tmp/TmpFile > /tmp/info_file\0rm -f /tmp/TmpFile\0rm -f /tmp/info_file\0"s;
    scripts += "eoam\nshow pon fec_mode\n\nquit\n\0"s;
  }
  EXPECT_EQ(readFile("/record/commands"), commands);
  EXPECT_EQ(readFile("/record/clish"), scripts);

  std::filesystem::create_symlink("/nowhere/at/all", "/tmp/info_file");
  EXPECT_FALSE(CliRunner::isFecEnabled()) << "no file";
  EXPECT_TRUE(exists("/tmp/info_file")) << "nothing to remove";
}

TEST_F(Unit, EponReadersSucceedWhateverIsThere) {
  EponOnuInfo info;
  EponAllCnt counters;
  writeFile("/sys/devices/platform/epon/info/infoEpon", "[abcdA B C D E F]\n");
  for (const char* folder : {"/nothing", "/sys/devices/platform/epon"}) {
    std::filesystem::remove_all(folder);
    EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0) << folder;
    EXPECT_EQ(EponInfo::getInstance().getAllCntInfo(counters), 0) << folder;
    EXPECT_EQ(info.state + info.etherType + info.unicastMacAddr + info.txLLId1 + info.txLLId2,
              "ABDEF");
  }
}

}  // namespace onu::test
