#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST_F(Unit, Command8PonCounters) {
  const std::string file = "/sys/devices/platform/epon/pm/allCnt";
  // The keys of the reply, each with the place of its value in the driver's file.
  const Texts keys = split(
      "rxCtrlFrames:5,rxDataFrames:4,rxFcsFrames:1,rxGateFrames:7,rxLongFrames:3,rxReportFrames:6,"
      "rxShortFrames:2,swRegAckFrames:17,swRegDeRegFrames:19,swRegNackFrames:18,"
      "swRegReRegFrams:20,swRxErrorFrames:16,swRxTotalFrames:15,swTxErorFrames:14,"
      "swTxTotalFrames:13,txByteAllow:12,txDataFrames:11,txRegisterAckFrames:9,"
      "txRegisterRequestFrames:8,txReportFrames:10",
      ',');
  const auto expectCounters = [&keys](const Texts& values, const std::string& label) {
    std::string text;
    for (const std::string& key : keys) {
      const std::size_t place = std::stoul(key.substr(key.find(':') + 1));
      text += "," + key.substr(0, key.find(':')) + ":\"" +
              (place <= values.size() ? values[place - 1] : "") + "\"";
    }
    EXPECT_EQ(reply("cmd_id=8&action=1"), json(text.replace(0, 1, "{") + "}")) << label;
  };
  const std::string longValue(100000, '7');
  const std::string page(4091, '7');  // the line ends one byte behind a page
  for (const auto& [text, want] : std::map<std::string, Texts>{
           {run("seq 21 | sed 's/.*/[cnt: &]/'").out, split(run("seq 21").out, '\n')},
           {"no bracket\n 1 2\n", {}},
           {"[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
           {"[abcd1  2   3]\n", {"1", "2", "3"}},
           {"[abcd1 ]\n[abcd2]\n", {"1", "2"}},
           {"[abcd1]\n[abcd2 3]\n", {"12", "3"}},
           {"[abcd1 2]", {"1", "2"}},
           {"[abcd" + page + "]", {page}},
           {"[abcd" + longValue + " 2]\n", {longValue, "2"}},
           {"[abcd\x01\xff\0 \"\\]\r\n"s, {"\x01\xff\0"s, "\"\\]"}},
       }) {
    writeFile(file, text);
    expectCounters(want, text.substr(0, 80));
  }
  fs::remove(file);
  expectCounters({}, "no file");
  fs::create_directory(file);
  expectCounters({}, "a directory");
}

}  // namespace onu::test
