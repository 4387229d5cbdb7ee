// What no command makes of the readers of the driver and of the command shell.

#include <filesystem>

#include "device/cli_runner.h"
#include "device/epon_info.h"
#include "tests/support/unit.h"

namespace onu::test {

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST_F(Unit, FecModeIsAskedOfTheCommandShell) {
  for (const auto& [answer, enabled] :
       std::map<std::string, bool>{{std::string(100000, '\n') + "> FEC Enabled.", true},
                                   {"FEC Disabled\nFEC\nEnabled\n", false}}) {
    fs::remove("/record/commands");
    writeFile("/etc/clish_fec_mode", answer);
    EXPECT_EQ(CliRunner::isFecEnabled(), enabled);
    EXPECT_TRUE(fs::is_empty("/tmp"));
    EXPECT_EQ(readFile("/record/commands"),
              "clish </tmp/TmpFile > /tmp/info_file\0"
              "rm -f /tmp/TmpFile\0rm -f /tmp/info_file\0"s);
  }
  EXPECT_EQ(split(readFile("/record/clish"), '\0'), Texts(2, eoam("show pon fec_mode")));
  fs::create_symlink("/nowhere/at/all", "/tmp/info_file");
  EXPECT_FALSE(CliRunner::isFecEnabled()) << "no file";
  EXPECT_TRUE(exists("/tmp/info_file")) << "nothing to remove";
}

TEST_F(Unit, EponReadersSucceedWhateverIsThere) {
  EponOnuInfo info;
  EponAllCnt counters;
  writeFile("/sys/devices/platform/epon/info/infoEpon", "[abcdA B C D E F]\n");
  EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0);
  fs::remove_all("/sys/devices/platform/epon");
  EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0);
  EXPECT_EQ(EponInfo::getInstance().getAllCntInfo(counters), 0);
  EXPECT_EQ(info.state + info.etherType + info.unicastMacAddr + info.txLLId1 + info.txLLId2,
            "ABDEF");
}

}  // namespace onu::test
