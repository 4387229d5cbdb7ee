// The EPON driver's files, as commands 8 and 2 report them, and what the command shell answers.

#include <filesystem>

#include "device/cli_runner.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

constexpr const char* kCounters = "/sys/devices/platform/epon/pm/allCnt";
constexpr const char* kInfo = "/sys/devices/platform/epon/info/infoEpon";

// The reply, in which a number is the place of a value in the driver's file.
const std::string kPlaces =
    "{rxCtrlFrames:5,rxDataFrames:4,rxFcsFrames:1,rxGateFrames:7,rxLongFrames:3,rxReportFrames:6,"
    "rxShortFrames:2,swRegAckFrames:17,swRegDeRegFrames:19,swRegNackFrames:18,swRegReRegFrams:20,"
    "swRxErrorFrames:16,swRxTotalFrames:15,swTxErorFrames:14,swTxTotalFrames:13,txByteAllow:12,"
    "txDataFrames:11,txRegisterAckFrames:9,txRegisterRequestFrames:8,txReportFrames:10,";

std::string counters(const Texts& values) {
  std::string text = kPlaces;
  for (std::size_t i = 0; i < 20; ++i) {
    const std::string place = ":" + std::to_string(i + 1) + ",";
    text.replace(text.find(place), place.size(),
                 ":\"" + (i < values.size() ? values[i] : "") + "\",");
  }
  text.back() = '}';
  return json(text);
}

using State = Unit;

TEST_F(State, CountersComeByTheirPlace) {
  Texts values;
  std::string lines;
  for (int i = 1; i <= 21; ++i) {
    values.push_back(std::to_string(i));
    lines += "[cnt: " + values.back() + "]\n";
  }
  writeFile(kCounters, lines);
  EXPECT_EQ(reply("cmd_id=8&action=1"), counters(values));
  std::filesystem::remove(kCounters);
  EXPECT_EQ(reply("cmd_id=8"), counters({})) << "no file";
  std::filesystem::create_directory(kCounters);
  EXPECT_EQ(reply("cmd_id=8"), counters({})) << "a directory";
}

TEST_F(State, CountersAreSplitAsTheDriverPrints) {
  const std::string longValue(100000, '7');
  for (const auto& [file, want] : std::map<std::string, Texts>{
           {"", {}},
           {"no bracket\n 1 2\n", {}},
           {"[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
           {"[abcd1  2   3]\n", {"1", "2", "3"}},
           {"[abcd1 ]\n[abcd2]\n", {"1", "2"}},
           {"[abcd1]\n[abcd2 3]\n", {"12", "3"}},
           {"[abcd1 2]", {"1", "2"}},
           {"[abcd1 2]\r\n", {"1", "2]"}},
           {"[abcd" + longValue + " 2]\n", {longValue, "2"}},
           {"[abcd\x01\xff\0 \"\\]\n"s, {"\x01\xff\0"s, "\"\\"}},
       }) {
    writeFile(kCounters, file);
    EXPECT_EQ(reply("cmd_id=8"), counters(want)) << file.substr(0, 80);
  }
}

TEST_F(State, LinkIsReadPerLine) {
  for (const auto& [file, want] : std::map<std::string, Texts>{
           {"[abcdActive B C D E F]\n", {"E", "1"}},
           {"x\n[abcdactive B C D E F G]\n", {"E", "0"}},
           {"[abcdAct B C D E F]\n[abcd  ive 2 3 4 5]\n", {"E5", "1"}},
           {"[abcdActive B C]\n", {"", "1"}},
           {"", {"", "0"}},
       }) {
    writeFile(kInfo, file);
    const std::string out = reply("cmd_id=2");
    EXPECT_NE(out.find(",llid:\"" + want[0] + "\","), std::string::npos) << file;
    EXPECT_NE(out.find(",reg_st:\"" + want[1] + "\","), std::string::npos) << file;
  }
  std::filesystem::remove(kInfo);
  std::filesystem::remove(kProfile);
  EXPECT_NE(reply("cmd_id=2").find("llid:\"\",onu_fm_ver:\"\","), std::string::npos);
}

TEST_F(State, FecModeIsAskedOfTheCommandShell) {
  std::string commands;
  std::string scripts;
  for (const auto& [answer, enabled] : std::vector<std::pair<std::string, bool>>{
           {readFile("/etc/clish_fec_mode"), true},
           {std::string(100000, '\n') + "> FEC Enabled.", true},
           {"FEC Disabled\nFEC\nEnabled\n", false},
       }) {
    writeFile("/etc/clish_fec_mode", answer);
    EXPECT_EQ(CliRunner::isFecEnabled(), enabled) << answer.substr(0, 80);
    commands += "clish </tmp/TmpFile > /tmp/info_file\0rm -f /tmp/TmpFile\0rm -f /tmp/info_file\0"s;
    scripts += "eoam\nshow pon fec_mode\n\nquit\n\0"s;
  }
  EXPECT_EQ(readFile("/record/commands"), commands);
  EXPECT_EQ(readFile("/record/clish"), scripts);

  std::filesystem::create_symlink("/nowhere/at/all", "/tmp/info_file");
  EXPECT_FALSE(CliRunner::isFecEnabled()) << "no file";
}

}  // namespace
}  // namespace onu::test
