// Requests as the web server hands them to the shipped executable, and the pieces of their way.

#include <cstdlib>
#include <ctime>

#include "base/number.h"
#include "frontend/cgi_log.h"
#include "frontend/query.h"
#include "frontend/response.h"
#include "frontend/web_data_comm.h"
#include "tests/support/unit.h"

namespace onu::test {

TEST_F(Unit, RequestsAreReadFromTheEnvironment) {
  constexpr std::size_t kMaxForm = std::size_t{1} << 20;  // bytes
  const std::string unknown = errorPage(404, "processor is not find");
  const std::string refused = errorPage(400, "read request fail");
  const std::string counters = reply("cmd_id=8");
  const std::string fail = "read request fail: ";
  const std::string tooLong =
      refused + "onu-cgi: " + fail + "the form is announced with more than 1 MiB\n";
  const std::string largest = std::to_string(kMaxForm + 1);
  // A request, and what it is answered with a line on standard error behind it where there is one.
  std::vector<std::pair<Request, std::string>> rows = {
      {{{{"REQUEST_METHOD", "GET"},
         {"QUERY_STRING", "cmd_id=8"},
         {"CONTENT_TYPE", "multipart/form-"}}},
       counters},
      {post("cmd_id=8&action=1"), counters},
      {post("cmd_id=8&x=" + std::string(kMaxForm - 11, 'y')), counters},
      {post("cmd_id=8888", "8"), counters},
      {post("cmd_id=8", "10"),
       refused + "onu-cgi: command 8: " + fail + "the form ends before its announced length\n"},
      {post("cmd_id=8", largest), tooLong},
      {post("cmd_id=8", "-1"), tooLong},
      {post("x", "99999999999999999999"), tooLong},
      {post("cmd_id=8", "many"), unknown},
      {post(std::string("x=1\0&cmd_id=8", 13)), unknown},
      {{{{"REQUEST_METHOD", "POST"}}, "cmd_id=8"}, unknown},
      {{{{"REQUEST_METHOD", "GET"}}}, unknown},
      {{{{"REQUEST_METHOD", "PUT"}, {"QUERY_STRING", "cmd_id=8"}}}, unknown},
      {{}, refused + "onu-cgi: " + fail + "REQUEST_METHOD is not set\n"},
  };
  for (const char* number :
       {"0", "7", "9", "12", "13", "15", "29", "31", "-8", "abc", "4294967304", "&action=1"}) {
    rows.emplace_back(get(std::string("cmd_id=") + number), unknown);
  }
  for (auto& [request, want] : rows) {
    const Outcome outcome = cgi(request);
    EXPECT_EQ(outcome.out + outcome.err, want)
        << request.body.substr(0, 80) << request.environment["QUERY_STRING"];
    EXPECT_EQ(outcome.status, 0);
  }
  // What cannot be read, and what is too long, which is not read at all: its pipe never ends.
  EXPECT_EQ(run(std::string(kCgi) + " </etc", post("cmd_id=8")).out, refused);
  const std::string endless = std::string("mkfifo /tmp/p; timeout 9 ") + kCgi + " <>/tmp/p";
  EXPECT_EQ(run(endless, post("", largest)).out, refused);
  // Nobody who reads the reply.
  EXPECT_EQ(run(std::string(kCgi) + " >&-", get("cmd_id=19&pwdold=admin&pwdnew=b")).status, 0);
  EXPECT_EQ(reply("cmd_id=1&username=admin&password=b"), json("0"));
  // Who changes the unit waits for the lock: here for a process that has it for a second.
  const std::string locked =
      "exec 9</tmp; /usr/bin/flock 9; { sleep 1; echo first; } & exec 9<&-; ";
  const Outcome waited = run(locked + kCgi, get("cmd_id=19&pwdold=b&pwdnew=c"));
  EXPECT_EQ(waited.out + waited.err, "first\n" + json("0"));
  // Then nobody else gets it, not even to share it.
  writeFile("/var/tevo/export_xml.sh", "/usr/bin/flock -nsE 9 /tmp true; echo $? >/tmp/status\n");
  run(locked + kCgi, get("cmd_id=10"));
  EXPECT_EQ(readFile("/tmp/status"), "9\n");
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
           {"name=a%20b=c+d&e", "name", "a%20b=c+d"},
           {"action=1&cmd_id=2", "", "2 1"},
           {"", "", "-7 -8"},
           {"cmd_id=&action=1", "", "-7 1"},
           {"xcmd_id=12abc&transaction=abc&action=1", "", "12 0"},
           {"cmd_id= \t+4/&action=-2:", "", "4 -2"},
           {"cmd_id=2147483648&action=2147483647", "", "2147483647 2147483647"},
           {"cmd_id=4294967304&action=-99999999999999999999", "", "2147483647 -2147483648"},
       }) {
    ParsedQuery query{-7, -8, ""};
    parseQuery(query, text);
    const std::string numbers =
        std::to_string(query.commandNumber) + " " + std::to_string(query.action);
    EXPECT_EQ(name.empty() ? numbers : getParam(query, name), want) << name << " in " << text;
    EXPECT_EQ(query.text + getParam(query, ""), text);
    parseQuery(query, "");
    EXPECT_EQ(query.text, text) << "an empty text leaves the query";
  }
}

// What no request shows.
TEST(FrontEnd, KeepsItsPromises) {
  ::clearenv();
  ::setenv("QUERY_STRING", "abc", 1);
  WebDataComm& web = WebDataComm::getInstance();
  std::uint32_t length = 0;
  RequestMethod method{};
  ContentType type{};
  std::string text;
  EXPECT_EQ(web.readRequestMethod(length, method), -1);
  EXPECT_EQ(web.readContentType(type), -1);
  EXPECT_EQ(web.readRequestText(text), -1);
  ::setenv("REQUEST_METHOD", "GET", 1);
  EXPECT_EQ(web.readRequestMethod(length, method), 0);
  EXPECT_EQ(web.readRequestText(text), 0);
  EXPECT_EQ(std::to_string(length) + text, "3abc");
  ::setenv("CONTENT_TYPE", "multipart/form-dXXX", 1);
  EXPECT_EQ(web.readContentType(type), 0);
  EXPECT_EQ(type, ContentType::kMultipart);
  EXPECT_EQ(toNumber(std::string_view(" 123", 3)), 12);
  EXPECT_EQ(toNumber(std::string_view("  -5", 2)), 0);

  testing::internal::CaptureStdout();
  ResponseWriter().printContentType("");
  ResponseWriter().printContentType("a/b");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Content-Type: text/html\r\nContent-Type: a/b\r\n");

  JsonFields fields;
  EXPECT_EQ(toJsonObject(fields), "{}");
  for (const char* key : {"b", "c", "a", "b", "c"}) {
    fields[key] += key;
  }
  EXPECT_EQ(toJsonObject(fields), "{a:\"a\",b:\"bb\",c:\"cc\"}");
}

// One test, since the log keeps its file open for the life of the process.
TEST_F(Unit, LogKeepsTheNewestTwoMebibytes) {
  constexpr const char* kLog = "/var/cgi.log";
  constexpr std::size_t kStamp = 21;
  ::setenv("TZ", "XXX-5", 1);
  CgiLog& log = CgiLog::getInstance();
  log.writeLine("");
  log.writeLine("abc");
  const std::string line = readFile(kLog);
  std::tm local{};
  EXPECT_STREQ(::strptime(line.c_str(), "[%Y-%m-%d %H:%M:%S]", &local), "abc\n") << line;
  EXPECT_NEAR(std::difftime(::timegm(&local), std::time(nullptr)), 5 * 3600, 60);
  CgiLog::formatTimeStamp(nullptr);

  // Zero bytes must survive the trimming as well. The log ends with a line feed beyond its limit.
  for (const std::size_t excess : {19U, 1U}) {
    const std::string old = "0123456789" + std::string(2097132 - kStamp + excess, '\0');
    writeFile(kLog, old);
    log.writeLine("0123456789");
    const std::string kept = readFile(kLog);
    ASSERT_EQ(kept.size(), 2097153U);
    EXPECT_EQ(kept.substr(0, old.size() - excess), old.substr(excess));
    EXPECT_EQ(kept.substr(old.size() - excess + kStamp), "0123456789\n");
  }
}

}  // namespace onu::test
