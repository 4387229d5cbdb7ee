#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

class Accounts : public Unit {
 protected:
  static std::string accounts(const std::string& user) {
    return "<cfg><account><admin>se&lt;cret</admin><user>" + user + "</user></account></cfg>";
  }
  // The body of the reply, with the settings as they were before and after.
  static void check(const std::string& before, const std::string& query, const std::string& body,
                    const std::string& after) {
    writeFile(kSettings, before);
    EXPECT_EQ(reply(query), json(body)) << query;
    EXPECT_EQ(readFile(kSettings), after) << query;
  }
};

TEST_F(Accounts, LogIn) {
  const std::string all = accounts("") + "<!-- -->";
  for (const auto& [query, body] : {std::pair("&username=admin&password=se<cret", "0"),
                                    {"&username=admin&password=secret", "2"},
                                    {"&username=user&password=", "0"},
                                    {"&username=guest&password=", "0"},
                                    {"&username=guest&password=x", "2"},
                                    {"", "0"},
                                    {"&action=1&username=user&password=", "0"}}) {
    check(all, std::string("cmd_id=1") + query, body, all);
  }
  check("<cfg/>", "cmd_id=1&username=admin&password=pw", "1", "<cfg/>");
  std::filesystem::remove(kSettings);
  EXPECT_EQ(cgi(post("cmd_id=1&username=admin&password=pw")).out, json("1"));
}

TEST_F(Accounts, ChangePassword) {
  const std::string all = accounts("") + "<!-- -->";
  check(all, "cmd_id=19&pwdold=se<creT&pwdnew=y", "1", all);
  check(all, "cmd_id=20&pwdold=&pwdnew=", "0", all);
  check(all, "cmd_id=20&pwdold=&pwdnew=%3Ca>", "0", accounts("%3Ca&gt;"));
  check(all, "cmd_id=20&pwdnew=n&pwdold=", "0", accounts("n"));
  const std::string admin = "<cfg><account><admin>new</admin></account></cfg>";
  check("<cfg><account><admin>old</admin></account></cfg>",
        "cmd_id=19&action=0&pwdold=old&pwdnew=new", "0", admin);
  check(admin, "cmd_id=20&pwdold=&pwdnew=new", "2", admin);  // no such element
  std::filesystem::remove(kSettings);
  EXPECT_EQ(reply("cmd_id=19&pwdold=&pwdnew=new"), json("2")) << "no file";
}

}  // namespace
}  // namespace onu::test
