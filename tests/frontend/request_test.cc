// Requests as the web server hands them to the shipped executable.

#include <gtest/gtest.h>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

const char* const kNotFound =
    "HTTP/1.1 404processor is not find\nConnection:close\n"
    "<HTML><BODY><p>Error:404 -- processor is not find</p></BODY></HTML>\n";

class Requests : public Unit {};

TEST_F(Requests, UnknownCommandsGetThePage) {
  for (const char* query : {"", "action=1", "cmd_id=0", "cmd_id=7", "cmd_id=9", "cmd_id=12",
                            "cmd_id=13", "cmd_id=15", "cmd_id=29", "cmd_id=31", "cmd_id=-8",
                            "cmd_id=abc", "cmd_id=4294967304", "cmd_id=&action=1"}) {
    const Outcome outcome = cgi(get(query));
    EXPECT_EQ(outcome.out, kNotFound) << query;
    EXPECT_EQ(outcome.status, 0) << query;
    EXPECT_EQ(outcome.err, "") << query;
  }
}

// The request with a variable of its environment set, or removed.
Request with(Request request, const std::string& name, const std::string& value) {
  request.environment[name] = value;
  return request;
}
Request without(Request request, const std::string& name) {
  request.environment.erase(name);
  return request;
}

TEST_F(Requests, AreReadFromTheEnvironment) {
  const Request posted = post("cmd_id=8");
  const Request got = get("cmd_id=8");
  struct Environment {
    const char* label;
    Request request;
    bool dispatched;  // as command 8, or not at all
  };
  for (const Environment& c : {
           Environment{"post", post("cmd_id=8&action=1"), true},
           {"long body", post("cmd_id=8&x=" + std::string(300000, 'y')), true},
           {"zero byte ends the body", post(std::string("x=1\0&cmd_id=8", 13)), false},
           {"cut at its length", with(post("cmd_id=8888"), "CONTENT_LENGTH", "8"), true},
           {"negative length", with(posted, "CONTENT_LENGTH", "-1"), true},
           {"beyond every memory", with(posted, "CONTENT_LENGTH", "99999999999999999999"), true},
           {"no number", with(posted, "CONTENT_LENGTH", "many"), false},
           {"post without length", without(posted, "CONTENT_LENGTH"), false},
           {"get without query", without(got, "QUERY_STRING"), false},
           {"other method", with(got, "REQUEST_METHOD", "PUT"), false},
           {"almost an upload", with(got, "CONTENT_TYPE", "multipart/form-"), true},
       }) {
    const Outcome outcome = cgi(c.request);
    EXPECT_EQ(outcome.out, c.dispatched ? reply("cmd_id=8") : kNotFound) << c.label;
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
