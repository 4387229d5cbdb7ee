#include "frontend/query.h"

#include <gtest/gtest.h>

#include <limits>

namespace onu {
namespace {

struct ParamCase {
  const char* label;
  const char* text;
  const char* name;
  const char* want;
};

TEST(Query, GetParamTakesTheFirstOccurrence) {
  for (const ParamCase& c : {
           ParamCase{"last", "cmd_id=6&action=1", "action", "1"},
           {"first", "cmd_id=6&action=1", "cmd_id", "6"},
           {"absent", "cmd_id=6", "ip", ""},
           {"empty name", "cmd_id=6", "", ""},
           {"empty value", "ip=&mask=1", "ip", ""},
           {"nothing after the name", "a=1&pwd", "pwd", ""},
           {"nothing after the equals sign", "a=1&pwd=", "pwd", ""},
           {"part of a longer name", "pwdold=a&pwdnew=b", "pwd", "ld=a"},
           {"the character skipped is an ampersand", "pwd&x=1&y", "pwd", "x=1"},
           {"part of a value", "name=ip9&ip=1", "ip", ""},
           {"equals sign in the value", "v=a=b&c", "v", "a=b"},
           {"escapes stay", "name=a%20b+c", "name", "a%20b+c"},
       }) {
    ParsedQuery query;
    parseQuery(query, c.text);
    EXPECT_EQ(getParam(query, c.name), c.want) << c.label << ": " << c.name << " in " << c.text;
  }
}

struct NumberCase {
  const char* label;
  const char* text;
  std::int32_t command;
  std::int32_t action;
};

TEST(Query, ParseTakesTheNumbers) {
  constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
  constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
  for (const NumberCase& c : {
           NumberCase{"usual", "cmd_id=3&action=0", 3, 0},
           {"order does not matter", "action=1&cmd_id=2", 2, 1},
           {"empty text keeps both", "", -7, -8},
           {"absent names keep both", "x=1", -7, -8},
           {"empty value keeps", "cmd_id=&action=1", -7, 1},
           {"leading digits", "cmd_id=12abc&action=abc", 12, 0},
           {"part of another name", "xcmd_id=3&transaction=5&action=1", 3, 5},
           {"white space and sign", "cmd_id= \t+4&action=-2", 4, -2},
           {"beyond 32 bits", "cmd_id=4294967304&action=-99999999999999999999", kMax, kMin},
       }) {
    ParsedQuery query;
    query.commandNumber = -7;
    query.action = -8;
    parseQuery(query, c.text);
    EXPECT_EQ(query.commandNumber, c.command) << c.label;
    EXPECT_EQ(query.action, c.action) << c.label;
    EXPECT_EQ(query.text, c.text);
  }
}

}  // namespace
}  // namespace onu
