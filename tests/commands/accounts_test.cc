#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

class Accounts : public Unit {
 protected:
  void SetUp() override {
    Unit::SetUp();
    writeFile(kSettings, kBefore);
  }
  static constexpr const char* kBefore =
      "<cfg><!-- c --><account><admin>se&lt;cret</admin><user/></account></cfg>";
};

struct Case {
  const char* label;
  const char* query;
  const char* body;
};

TEST_F(Accounts, LogIn) {
  for (const Case& c : {
           Case{"right", "cmd_id=1&username=admin&password=se<cret", "0"},
           {"wrong", "cmd_id=1&username=admin&password=secret", "2"},
           {"empty password of the account", "cmd_id=1&username=user&password=", "0"},
           {"no such account", "cmd_id=1&username=guest&password=", "0"},
           {"no such account, some password", "cmd_id=1&username=guest&password=x", "2"},
           {"no parameters", "cmd_id=1", "0"},
           {"action does not matter", "cmd_id=1&action=1&username=user&password=", "0"},
       }) {
    EXPECT_EQ(reply(c.query), json(c.body)) << c.label;
  }
  writeFile(kSettings, "<cfg><account><admin>pw</admin></account></cfg>");
  EXPECT_EQ(reply("cmd_id=1&username=admin&password=pw"), json("0"));
  writeFile(kSettings, "<cfg/>");
  EXPECT_EQ(reply("cmd_id=1&username=admin&password=pw"), json("1"));
  std::filesystem::remove(kSettings);
  EXPECT_EQ(cgi(post("cmd_id=1&username=admin&password=pw")).out, json("1"));
}

TEST_F(Accounts, ChangePassword) {
  struct Change {
    const char* label;
    const char* query;
    const char* body;
    const char* after;  // null: not written
  };
  for (const Change& c : {
           Change{"wrong old password", "cmd_id=19&pwdold=x&pwdnew=y", "1", nullptr},
           {"user", "cmd_id=20&pwdold=&pwdnew=%3Ca>", "0",
            "<cfg><account><admin>se&lt;cret</admin><user>%3Ca&gt;</user></account></cfg>"},
           {"other order", "cmd_id=20&pwdnew=n&pwdold=", "0",
            "<cfg><account><admin>se&lt;cret</admin><user>n</user></account></cfg>"},
           {"same password", "cmd_id=20&pwdold=&pwdnew=", "0", nullptr},
       }) {
    writeFile(kSettings, kBefore);
    EXPECT_EQ(reply(c.query), json(c.body)) << c.label;
    EXPECT_EQ(readFile(kSettings), c.after == nullptr ? kBefore : c.after) << c.label;
  }
  writeFile(kSettings, "<cfg><account><admin>old</admin></account></cfg>");
  EXPECT_EQ(reply("cmd_id=19&action=0&pwdold=old&pwdnew=new"), json("0"));
  EXPECT_EQ(readFile(kSettings), "<cfg><account><admin>new</admin></account></cfg>");
  EXPECT_EQ(reply("cmd_id=20&pwdold=&pwdnew=new"), json("2")) << "no such element";
  std::filesystem::remove(kSettings);
  EXPECT_EQ(reply("cmd_id=19&pwdold=&pwdnew=new"), json("2")) << "no file";
}

}  // namespace
}  // namespace onu::test
