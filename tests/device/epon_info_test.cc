// The EPON driver's files, as command 8 reports the counters and as the library hands out the link
// state.

#include "device/epon_info.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

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
  const std::vector<std::string> values = {"0x1", "2",  "3",  "4",  "5",  "6",  "7",
                                           "8",   "9",  "10", "11", "12", "13", "14",
                                           "15",  "16", "17", "18", "19", "20"};
  std::string lines;
  for (const std::string& value : values) {
    lines += "[cnt: " + value + "]\n";
  }
  writeFile(kCounters, lines);
  for (const char* query : {"cmd_id=8&action=0", "cmd_id=8&action=1", "cmd_id=8"}) {
    EXPECT_EQ(reply(query), expected(values)) << query;
  }
}

TEST_F(PonCounters, AreEmptyTextsWithoutTheFile) {
  std::filesystem::remove(kCounters);
  EXPECT_EQ(reply("cmd_id=8&action=0"), expected({}));
  std::filesystem::create_directory(kCounters);
  EXPECT_EQ(reply("cmd_id=8&action=0"), expected({}));
}

TEST_F(PonCounters, SplitWhatTheDriverPrints) {
  struct Case {
    const char* label;
    std::string file;
    std::vector<std::string> want;
  };
  const std::string longValue(100000, '7');
  const std::vector<Case> cases = {
      {"empty file", "", {}},
      {"no bracket line", "counters\n 1 2\n", {}},
      {"line of the bracket and less", "[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
      {"blanks are one separator", "[abcd1  2   3]\n", {"1", "2", "3"}},
      {"closing blank", "[abcd1 ]\n[abcd2]\n", {"1", "2"}},
      {"sixth character goes on", "[abcd1]\n[abcd2 3]\n", {"12", "3"}},
      {"sixth character is a blank", "[abcd1]\n[abcd 2 3]\n", {"1", "2", "3"}},
      {"last character goes whatever it is", "[abcd12\n", {"1"}},
      {"no line feed at the end", "[abcd1 2]", {"1", "2"}},
      {"carriage returns", "[abcd1 2]\r\n", {"1", "2]"}},
      {"more than twenty",
       "[abcd1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22]\n[abcd 23]\n",
       {"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",  "10",
        "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"}},
      {"very long value", "[abcd" + longValue + " 2]\n", {longValue, "2"}},
      {"bytes of any value", std::string("[abcd\x01\xff\0 \"\\]\n", 12), {"\x01\xff", "\"\\"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> want = c.want;
    if (std::string(c.label) == "bytes of any value") {
      want[0].push_back('\0');
    }
    writeFile(kCounters, c.file);
    const Outcome outcome = cgi(get("cmd_id=8&action=0"));
    EXPECT_EQ(outcome.out, expected(want)) << c.label;
    EXPECT_EQ(outcome.status, 0) << c.label;
  }
}

class LinkState : public Unit {};

TEST_F(LinkState, IsReadPerLine) {
  struct Case {
    const char* label;
    std::string file;
    std::vector<std::string> want;  // state, type, address, second address, two link numbers
  };
  for (const Case& c : {
           Case{"one line", "[abcdA B C D E F]\n", {"A", "B", "D", "old", "E", "F"}},
           {"seventh token", "x\n[abcdA B C D E F G]\n", {"A", "B", "D", "old", "E", "F"}},
           {"two lines",
            "[abcdA B C D E F]\n[abcd  1 2 3 4 5]\n",
            {"A1", "B2", "D4", "old", "E5", "F"}},
           {"too few", "[abcdA B C]\n", {"A", "B", "", "old", "", ""}},
       }) {
    writeFile(kInfo, c.file);
    EponOnuInfo info;
    info.unicastMacAddr2 = "old";
    EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0) << c.label;
    EXPECT_EQ((std::vector<std::string>{info.state, info.etherType, info.unicastMacAddr,
                                        info.unicastMacAddr2, info.txLLId1, info.txLLId2}),
              c.want)
        << c.label;
  }
}

TEST_F(LinkState, StaysAsItIsWithoutTheFile) {
  std::filesystem::remove(kInfo);
  EponOnuInfo info;
  info.state = "old";
  EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0);
  EXPECT_EQ(info.state, "old");
}

}  // namespace
}  // namespace onu::test
