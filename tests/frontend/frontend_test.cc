// Requests as the web server hands them to the shipped executable.

#include <cstdlib>
#include <ctime>

#include "frontend/cgi_log.h"
#include "frontend/query.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

using Requests = Unit;

Request posted(const std::string& length, const std::string& body = "cmd_id=8") {
  return {{{"REQUEST_METHOD", "POST"}, {"CONTENT_LENGTH", length}}, body};
}

TEST_F(Requests, AreReadFromTheEnvironment) {
  Request almostUpload = get("cmd_id=8");
  almostUpload.environment["CONTENT_TYPE"] = "multipart/form-";
  for (const Request& request :
       {almostUpload, post("cmd_id=8&action=1"), post("cmd_id=8&x=" + std::string(300000, 'y')),
        posted("8", "cmd_id=8888"), posted("-1"), posted("99999999999999999999")}) {
    EXPECT_EQ(cgi(request).out, reply("cmd_id=8")) << request.body.substr(0, 80);
  }
  std::vector<Request> unknown = {post(std::string("x=1\0&cmd_id=8", 13)),
                                  posted("many"),
                                  {{{"REQUEST_METHOD", "POST"}}, "cmd_id=8"},
                                  {{{"REQUEST_METHOD", "GET"}}, ""},
                                  {{{"REQUEST_METHOD", "PUT"}, {"QUERY_STRING", "cmd_id=8"}}, ""}};
  for (const char* query : {"action=1", "cmd_id=0", "cmd_id=7", "cmd_id=9", "cmd_id=12",
                            "cmd_id=13", "cmd_id=15", "cmd_id=29", "cmd_id=31", "cmd_id=-8",
                            "cmd_id=abc", "cmd_id=4294967304", "cmd_id=&action=1"}) {
    unknown.push_back(get(query));
  }
  for (Request& request : unknown) {
    const Outcome outcome = cgi(request);
    EXPECT_EQ(outcome.out + outcome.err, errorPage(404, "processor is not find"))
        << request.body << request.environment["QUERY_STRING"];
    EXPECT_EQ(outcome.status, 0);
  }
  EXPECT_EQ(cgi({}).out, errorPage(400, "read request fail"));
}

TEST_F(Requests, SurviveAClosedOutput) {
  const Request request = get("cmd_id=19&pwdold=admin&pwdnew=b");
  EXPECT_EQ(shell(std::string(kCgi) + " >&-", request).status, 0);
  EXPECT_EQ(reply("cmd_id=1&username=admin&password=b"), json("0"));
}

TEST(Query, GetParamTakesTheFirstOccurrence) {
  struct Case {
    const char *text, *name, *want;
  };
  for (const Case& c : {
           Case{"cmd_id=6&action=1", "action", "1"},
           {"cmd_id=6", "ip", ""},
           {"cmd_id=6", "", ""},
           {"ip=&mask=1", "ip", ""},
           {"a=1&pwd", "pwd", ""},
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

// One test, since the log keeps its file open for the life of the process.
TEST(CgiLog, KeepsTheNewestTwoMebibytes) {
  constexpr const char* kLog = "/var/cgi.log";
  constexpr std::size_t kStamp = 21;
  Unit::reset();
  ::setenv("TZ", "XXX-5", 1);
  CgiLog& log = CgiLog::getInstance();
  log.writeLine("");
  EXPECT_EQ(readFile(kLog), "");

  log.writeLine("abc");
  const std::string line = readFile(kLog);
  std::tm local{};
  EXPECT_STREQ(::strptime(line.c_str(), "[%Y-%m-%d %H:%M:%S]", &local), "abc\n") << line;
  EXPECT_NEAR(std::difftime(::timegm(&local), std::time(nullptr)), 5 * 3600, 60);
  CgiLog::formatTimeStamp(nullptr);

  // Zero bytes must survive the trimming as well.
  const std::string old = std::string("0123456789") + std::string(2097140 - 10, '\0');
  writeFile(kLog, old);
  log.writeLine("0123456789");
  const std::string kept = readFile(kLog);
  ASSERT_EQ(kept.size(), 2097153U);
  EXPECT_EQ(kept.substr(0, old.size() - 19), old.substr(19));
  EXPECT_EQ(kept.substr(old.size() - 19 + kStamp), "0123456789\n");

  writeFile(kLog, std::string(2097152 - kStamp, 'x'));  // one byte too many
  log.writeLine("y");
  EXPECT_EQ(readFile(kLog).size(), 2097153U);
}

}  // namespace
}  // namespace onu::test
