// Command 8.

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

constexpr const char* kFile = "/sys/devices/platform/epon/pm/allCnt";

// The reply with these values, in which a number is the place of a value in the driver's file.
std::string counters(const Texts& values) {
  std::string text =
      "{rxCtrlFrames:5,rxDataFrames:4,rxFcsFrames:1,rxGateFrames:7,rxLongFrames:3,rxReportFrames:6,"
      "rxShortFrames:2,swRegAckFrames:17,swRegDeRegFrames:19,swRegNackFrames:18,"
      "swRegReRegFrams:20,swRxErrorFrames:16,swRxTotalFrames:15,swTxErorFrames:14,"
      "swTxTotalFrames:13,txByteAllow:12,txDataFrames:11,txRegisterAckFrames:9,"
      "txRegisterRequestFrames:8,txReportFrames:10}";
  for (std::size_t i = 20; i > 0; --i) {
    const std::string place = ":" + std::to_string(i);
    text.replace(text.find(place), place.size(),
                 ":\"" + (i <= values.size() ? values[i - 1] : "") + "\"");
  }
  return json(text);
}

}  // namespace

TEST_F(Unit, PonCounters) {
  Texts numbers;
  std::string lines;
  for (int i = 1; i <= 21; ++i) {
    numbers.push_back(std::to_string(i));
    lines += "[cnt: " + numbers.back() + "]\n";
  }
  const std::string longValue(100000, '7');
  const std::string page(4091, '7');  // the line ends one byte behind a page
  for (const auto& [file, want] : std::map<std::string, Texts>{
           {lines, numbers},
           {"", {}},
           {"no bracket\n 1 2\n", {}},
           {"[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
           {"[abcd1  2   3]\n", {"1", "2", "3"}},
           {"[abcd1 ]\n[abcd2]\n", {"1", "2"}},
           {"[abcd1]\n[abcd2 3]\n", {"12", "3"}},
           {"[abcd1 2]", {"1", "2"}},
           {"[abcd1 2]\r\n", {"1", "2]"}},
           {"[abcd" + page + "]", {page}},
           {"[abcd" + longValue + " 2]\n", {longValue, "2"}},
           {"[abcd\x01\xff\0 \"\\]\n"s, {"\x01\xff\0"s, "\"\\"}},
       }) {
    writeFile(kFile, file);
    EXPECT_EQ(reply("cmd_id=8&action=1"), counters(want)) << file.substr(0, 80);
  }
  std::filesystem::remove(kFile);
  EXPECT_EQ(reply("cmd_id=8"), counters({})) << "no file";
  std::filesystem::create_directory(kFile);
  EXPECT_EQ(reply("cmd_id=8"), counters({})) << "a directory";
}

}  // namespace onu::test
