// Requests as the web server hands them to the shipped executable.

#include <gtest/gtest.h>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

const char* const kNotFound = "processor is not find";

class Requests : public Unit {};

TEST_F(Requests, UnknownCommandsGetThePage) {
  const std::string page =
      "HTTP/1.1 404processor is not find\nConnection:close\n"
      "<HTML><BODY><p>Error:404 -- processor is not find</p></BODY></HTML>\n";
  for (const char* query : {"", "action=1", "cmd_id=0", "cmd_id=7", "cmd_id=9", "cmd_id=12",
                            "cmd_id=13", "cmd_id=15", "cmd_id=29", "cmd_id=31", "cmd_id=-8",
                            "cmd_id=abc", "cmd_id=4294967304", "cmd_id=&action=1"}) {
    const Outcome outcome = cgi(get(query));
    EXPECT_EQ(outcome.out, page) << query;
    EXPECT_EQ(outcome.status, 0) << query;
    EXPECT_EQ(outcome.err, "") << query;
  }
}

struct Environment {
  const char* label;
  Request request;
  bool dispatched;  // as command 8, or not at all
};

TEST_F(Requests, AreReadFromTheEnvironment) {
  const std::string counters = reply("cmd_id=8&action=0");
  Request noQuery = get("");
  noQuery.environment.erase("QUERY_STRING");
  Request noLength = post("cmd_id=8");
  noLength.environment.erase("CONTENT_LENGTH");
  Request put = get("cmd_id=8");
  put.environment["REQUEST_METHOD"] = "PUT";
  Request negative = post("cmd_id=8");
  negative.environment["CONTENT_LENGTH"] = "-1";
  Request huge = post("cmd_id=8");
  huge.environment["CONTENT_LENGTH"] = "99999999999999999999";
  Request word = post("cmd_id=8");
  word.environment["CONTENT_LENGTH"] = "many";
  Request cut = post("cmd_id=8888");
  cut.environment["CONTENT_LENGTH"] = "8";
  Request form = get("cmd_id=8");
  form.environment["CONTENT_TYPE"] = "multipart/form-";
  const std::vector<Environment> cases = {
      {"post", post("cmd_id=8&action=1"), true},
      {"post of a long body", post("cmd_id=8&x=" + std::string(300000, 'y')), true},
      {"zero byte ends the body", post(std::string("cmd_id=8\0&cmd_id=9", 18)), true},
      {"body cut at its length", cut, true},
      {"negative length", negative, true},
      {"length beyond every memory", huge, true},
      {"length that is no number", word, false},
      {"post without length", noLength, false},
      {"get without query", noQuery, false},
      {"other method", put, false},
      {"almost an upload", form, true},
  };
  for (const Environment& c : cases) {
    const Outcome outcome = cgi(c.request);
    EXPECT_EQ(outcome.out, c.dispatched ? counters : errorPage(404, kNotFound)) << c.label;
    EXPECT_EQ(outcome.status, 0) << c.label;
  }
}

TEST_F(Requests, WithoutAMethodCannotBeRead) {
  EXPECT_EQ(cgi({}).out, errorPage(400, "read request fail"));
}

TEST_F(Requests, SurviveAClosedOutput) {
  writeFile(kSettings, "<cfg><account><admin>a</admin></account></cfg>");
  Request request = get("cmd_id=19&pwdold=a&pwdnew=b");
  request.closeOutput = true;
  EXPECT_EQ(cgi(request).status, 0);
  EXPECT_EQ(readFile(kSettings), "<cfg><account><admin>b</admin></account></cfg>");
}

}  // namespace
}  // namespace onu::test
