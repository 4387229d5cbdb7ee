// Requests as the web server hands them to the shipped executable, and the pieces of their way.

#include <cstdlib>
#include <ctime>

#include "frontend/cgi_log.h"
#include "frontend/query.h"
#include "frontend/response.h"
#include "frontend/web_data_comm.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr std::size_t kMaxForm = std::size_t{1} << 20;  // bytes

// A form that is announced with another length than its own.
Request announced(const std::string& length, const std::string& body) {
  Request request = post(body);
  request.environment["CONTENT_LENGTH"] = length;
  return request;
}

}  // namespace

TEST_F(Unit, RequestsAreReadFromTheEnvironment) {
  const std::string unknown = errorPage(404, "processor is not find");
  const std::string refused = errorPage(400, "read request fail");
  const std::string counters = reply("cmd_id=8");
  Request almostUpload = get("cmd_id=8");
  almostUpload.environment["CONTENT_TYPE"] = "multipart/form-";
  struct Case {
    Request request;
    std::string reply;
    std::string error = {};
  };
  const std::string fail = "read request fail: ";
  const std::string tooLong = fail + "the form is announced with more than 1 MiB";
  const std::string largest = std::to_string(kMaxForm + 1);
  std::vector<Case> cases = {
      {almostUpload, counters},
      {post("cmd_id=8&action=1"), counters},
      {post("cmd_id=8&x=" + std::string(kMaxForm - 11, 'y')), counters},
      {announced("8", "cmd_id=8888"), counters},
      {announced("10", "cmd_id=8"), refused,
       "command 8: " + fail + "the form ends before its announced length"},
      {announced(largest, "cmd_id=8"), refused, tooLong},
      {announced("-1", "cmd_id=8"), refused, tooLong},
      {announced("99999999999999999999", "x"), refused, tooLong},
      {announced("many", "cmd_id=8"), unknown},
      {post("x"), unknown},
      {post(std::string("x=1\0&cmd_id=8", 13)), unknown},
      {{{{"REQUEST_METHOD", "POST"}}, "cmd_id=8"}, unknown},
      {{{{"REQUEST_METHOD", "GET"}}, ""}, unknown},
      {{{{"REQUEST_METHOD", "PUT"}, {"QUERY_STRING", "cmd_id=8"}}, ""}, unknown},
      {{}, refused, fail + "REQUEST_METHOD is not set"},
  };
  for (const char* query : {"action=1", "cmd_id=0", "cmd_id=7", "cmd_id=9", "cmd_id=12",
                            "cmd_id=13", "cmd_id=15", "cmd_id=29", "cmd_id=31", "cmd_id=-8",
                            "cmd_id=abc", "cmd_id=4294967304", "cmd_id=&action=1"}) {
    cases.push_back({get(query), unknown});
  }
  for (Case& c : cases) {
    const Outcome outcome = cgi(c.request);
    const std::string label = c.request.body.substr(0, 80) + c.request.environment["QUERY_STRING"];
    EXPECT_EQ(outcome.out, c.reply) << label;
    EXPECT_EQ(outcome.err, c.error.empty() ? "" : "onu-cgi: " + c.error + "\n") << label;
    EXPECT_EQ(outcome.status, 0) << label;
  }
  // What cannot be read, and what is too long, which is not read at all: its pipe never ends.
  EXPECT_EQ(shell(std::string(kCgi) + " </etc", post("cmd_id=8")).out, refused);
  const std::string endless = std::string("mkfifo /tmp/p; timeout 9 ") + kCgi + " <>/tmp/p";
  EXPECT_EQ(shell(endless, announced(largest, "")).out, refused);
}

TEST_F(Unit, RequestsSurviveAClosedOutput) {
  EXPECT_EQ(shell(std::string(kCgi) + " >&-", get("cmd_id=19&pwdold=admin&pwdnew=b")).status, 0);
  EXPECT_EQ(reply("cmd_id=1&username=admin&password=b"), json("0"));
}

TEST(Query, IsSearchedAsPlainText) {
  // Without a name: the command number and the action, -7 and -8 where they are kept.
  for (const auto& [text, name, want] : std::vector<std::array<std::string, 3>>{
           {"cmd_id=6&action=1", "action", "1"},
           {"cmd_id=6", "ip", ""},
           {"ip=&mask=1", "ip", ""},
           {"a=1&pwd", "pwd", ""},
           {"pwdold=a&pwdnew=b", "pwd", "ld=a"},
           {"pwd&x=1&y", "pwd", "x=1"},  // the character skipped is an ampersand
           {"name=ip9&ip=1", "ip", ""},
           {"v=a=b&c", "v", "a=b"},
           {"name=a%20b+c", "name", "a%20b+c"},
           {"action=1&cmd_id=2", "", "2 1"},
           {"", "", "-7 -8"},
           {"cmd_id=&action=1", "", "-7 1"},
           {"cmd_id=12abc&action=abc", "", "12 0"},
           {"xcmd_id=3&transaction=5&action=1", "", "3 5"},
           {"cmd_id= \t+4&action=-2", "", "4 -2"},
           {"cmd_id=2147483648&action=2147483647", "", "2147483647 2147483647"},
           {"cmd_id=4294967304&action=-99999999999999999999", "", "2147483647 -2147483648"},
       }) {
    ParsedQuery query{-7, -8, ""};
    parseQuery(query, text);
    const std::string numbers =
        std::to_string(query.commandNumber) + " " + std::to_string(query.action);
    EXPECT_EQ(name.empty() ? numbers : getParam(query, name), want) << name << " in " << text;
    EXPECT_EQ(query.text + getParam(query, ""), text);
  }
}

TEST(WebDataComm, SaysWhatIsMissing) {
  ::clearenv();
  WebDataComm& web = WebDataComm::getInstance();
  std::uint32_t length = 0;
  RequestMethod method{};
  ContentType type{};
  std::string text;
  EXPECT_EQ(web.readRequestMethod(length, method), -1);
  EXPECT_EQ(web.readContentType(type), -1);
  EXPECT_EQ(web.readRequestText(text), -1);
}

TEST(ResponseWriter, PrintsAContentType) {
  testing::internal::CaptureStdout();
  ResponseWriter().printContentType("");
  ResponseWriter().printContentType("a/b");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Content-Type: text/html\r\nContent-Type: a/b\r\n");
}

TEST(JsonFields, KeepTheLastValueOfAKey) {
  JsonFields fields;
  EXPECT_EQ(toJsonObject(fields), "{}");
  for (const char* key : {"b", "c", "a", "b", "c"}) {
    fields[key] += key;
  }
  EXPECT_EQ(toJsonObject(fields), "{a:\"a\",b:\"bb\",c:\"cc\"}");
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

  // Zero bytes must survive the trimming as well. The log ends with a line feed beyond its limit.
  const std::string old = "0123456789" + std::string(2097130, '\0');
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

}  // namespace onu::test
