// The EPON driver's files, as command 8 reports the counters and as the library hands out the link
// state.

#include "device/epon_info.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

class PonCounters : public Unit {
 protected:
  // The reply with the given values, in the order of the driver's file.
  static std::string expected(std::vector<std::string> v) {
    v.resize(20);
    return json(
        "{rxCtrlFrames:\"" + v[4] + "\",rxDataFrames:\"" + v[3] + "\",rxFcsFrames:\"" + v[0] +
        "\",rxGateFrames:\"" + v[6] + "\",rxLongFrames:\"" + v[2] + "\",rxReportFrames:\"" + v[5] +
        "\",rxShortFrames:\"" + v[1] + "\",swRegAckFrames:\"" + v[16] + "\",swRegDeRegFrames:\"" +
        v[18] + "\",swRegNackFrames:\"" + v[17] + "\",swRegReRegFrams:\"" + v[19] +
        "\",swRxErrorFrames:\"" + v[15] + "\",swRxTotalFrames:\"" + v[14] + "\",swTxErorFrames:\"" +
        v[13] + "\",swTxTotalFrames:\"" + v[12] + "\",txByteAllow:\"" + v[11] +
        "\",txDataFrames:\"" + v[10] + "\",txRegisterAckFrames:\"" + v[8] +
        "\",txRegisterRequestFrames:\"" + v[7] + "\",txReportFrames:\"" + v[9] + "\"}");
  }
};

TEST_F(PonCounters, AnswerFromTheDriversFile) {
  std::vector<std::string> values = {"0x1"};
  std::string lines = "[cnt: 0x1]\n";
  for (int i = 2; i <= 20; ++i) {
    values.push_back(std::to_string(i));
    lines += "[cnt: " + values.back() + "]\n";
  }
  for (const char* query : {"cmd_id=8&action=0", "cmd_id=8&action=1", "cmd_id=8"}) {
    writeFile(kCounters, lines);
    EXPECT_EQ(reply(query), expected(values)) << query;
    lines += "[cnt: beyond the twentieth]\n";
  }
  std::filesystem::remove(kCounters);
  EXPECT_EQ(reply("cmd_id=8"), expected({})) << "no file";
  std::filesystem::create_directory(kCounters);
  EXPECT_EQ(reply("cmd_id=8"), expected({})) << "a directory";
}

TEST_F(PonCounters, SplitWhatTheDriverPrints) {
  const std::string longValue(100000, '7');
  struct Case {
    std::string file;
    std::vector<std::string> want;
  };
  for (const Case& c : {
           Case{"", {}},
           {"no bracket\n 1 2\n", {}},
           {"[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
           {"[abcd1  2   3]\n", {"1", "2", "3"}},
           {"[abcd1 ]\n[abcd2]\n", {"1", "2"}},
           {"[abcd1]\n[abcd2 3]\n", {"12", "3"}},
           {"[abcd1]\n[abcd 2 3]\n", {"1", "2", "3"}},
           {"[abcd12\n", {"1"}},
           {"[abcd1 2]", {"1", "2"}},
           {"[abcd1 2]\r\n", {"1", "2]"}},
           {"[abcd" + longValue + " 2]\n", {longValue, "2"}},
           {"[abcd\x01\xff\0 \"\\]\n"s, {"\x01\xff\0"s, "\"\\"}},
       }) {
    writeFile(kCounters, c.file);
    const Outcome outcome = cgi(get("cmd_id=8&action=0"));
    EXPECT_EQ(outcome.out, expected(c.want)) << c.file.substr(0, 80);
    EXPECT_EQ(outcome.status, 0) << c.file.substr(0, 80);
  }
}

class LinkState : public Unit {};

TEST_F(LinkState, IsReadPerLine) {
  for (const auto& [file, want] : std::map<std::string, std::string>{
           {"[abcdA B C D E F]\n", "A,B,D,old,E,F"},
           {"x\n[abcdA B C D E F G]\n", "A,B,D,old,E,F"},
           {"[abcdA B C D E F]\n[abcd  1 2 3 4 5]\n", "A1,B2,D4,old,E5,F"},
           {"[abcdA B C]\n", "A,B,,old,,"},
       }) {
    writeFile(kInfo, file);
    EponOnuInfo i;
    i.unicastMacAddr2 = "old";
    EXPECT_EQ(EponInfo::getInstance().getOnuInfo(i), 0) << file;
    EXPECT_EQ(i.state + "," + i.etherType + "," + i.unicastMacAddr + "," + i.unicastMacAddr2 + "," +
                  i.txLLId1 + "," + i.txLLId2,
              want)
        << file;
  }
  std::filesystem::remove(kInfo);
  EponOnuInfo info;
  info.state = "old";
  EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0);
  EXPECT_EQ(info.state, "old") << "no file";
}

}  // namespace
}  // namespace onu::test
