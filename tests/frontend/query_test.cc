#include "frontend/query.h"

#include <gtest/gtest.h>

namespace onu {
namespace {

TEST(Query, GetParamTakesTheFirstOccurrence) {
  struct Case {
    const char *text, *name, *want;
  };
  for (const Case& c : {
           Case{"cmd_id=6&action=1", "action", "1"},
           {"cmd_id=6&action=1", "cmd_id", "6"},
           {"cmd_id=6", "ip", ""},
           {"cmd_id=6", "", ""},
           {"ip=&mask=1", "ip", ""},
           {"a=1&pwd", "pwd", ""},
           {"a=1&pwd=", "pwd", ""},
           {"pwdold=a&pwdnew=b", "pwd", "ld=a"},
           {"pwd&x=1&y", "pwd", "x=1"},  // the character skipped is an ampersand
           {"name=ip9&ip=1", "ip", ""},
           {"v=a=b&c", "v", "a=b"},
           {"name=a%20b+c", "name", "a%20b+c"},
       }) {
    ParsedQuery query;
    parseQuery(query, c.text);
    EXPECT_EQ(getParam(query, c.name), c.want) << c.name << " in " << c.text;
  }
}

TEST(Query, ParseTakesTheNumbers) {
  struct Case {
    const char* text;
    std::int32_t command, action;  // -7 and -8 are kept
  };
  for (const Case& c : {
           Case{"action=1&cmd_id=2", 2, 1},
           {"", -7, -8},
           {"x=1", -7, -8},
           {"cmd_id=&action=1", -7, 1},
           {"cmd_id=12abc&action=abc", 12, 0},
           {"xcmd_id=3&transaction=5&action=1", 3, 5},
           {"cmd_id= \t+4&action=-2", 4, -2},
           {"cmd_id=4294967304&action=-99999999999999999999", INT32_MAX, INT32_MIN},
       }) {
    ParsedQuery query{-7, -8, ""};
    parseQuery(query, c.text);
    EXPECT_EQ(query.commandNumber, c.command) << c.text;
    EXPECT_EQ(query.action, c.action) << c.text;
    EXPECT_EQ(query.text, c.text);
  }
}

}  // namespace
}  // namespace onu
