#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace onu::test {

using Texts = std::vector<std::string>;

// What the web server hands to the CGI program.
struct Request {
  std::map<std::string, std::string> environment = {};
  std::string body = {};
};

Request get(const std::string& query);
// A form, and an upload to a URL with a query string; `length` is announced if it is not empty.
Request post(const std::string& body, const std::string& length = "");
Request upload(const std::string& query, const std::string& body, const std::string& length = "");

// What came of it.
struct Outcome {
  std::string out;
  std::string err;
  int status = 0;  // exit status, or 128 and the number of the signal
  Texts commands;  // texts given to the unit's shell, in order
  Texts scripts;   // what the command shell was fed
};

// The reply around a JSON body, an error page, and a script for the command shell in its usual
// view.
std::string json(const std::string& body);
std::string errorPage(int code, const std::string& message);
std::string eoam(const std::string& line);

std::string readFile(const std::string& path);                     // empty when it cannot be read
void writeFile(const std::string& path, const std::string& text);  // makes the folders it needs
Texts split(const std::string& text, char end);  // the pieces, less the character that ends each
bool exists(const std::string& path);

// A text that needs every care (markup, quotes, escapes, a line feed, 64 KiB), and how the settings
// files hold it.
struct OddText {
  std::string text = "<a b='c'>]]> \"%0A+\n;" + std::string(65536, 'x');
  std::string asText = "&lt;a b='c'&gt;]]&gt; \"%0A+\n;" + std::string(65536, 'x');
  std::string asAttribute = "&lt;a b='c'&gt;]]&gt; &quot;%0A+&#xA;;" + std::string(65536, 'x');
};
inline const OddText kOdd;

// A request to a unit with settings, and all that it leaves behind.
struct Case {
  std::string query;
  std::string reply;  // the body of a reply, or the whole of another page; nothing for none
  // The files written, in order, each followed by a blank: "tevo" and the like are settings,
  // "commands" is a command given to the shell, "clish" a script fed to clish.
  std::string written = {};
  std::string changes = {};  // in the settings: "from|to|from|to"
  std::string runs = {};     // scripts fed to clish, else commands given to the shell: "one|other"
};
// The files written where a script goes through the command shell.
inline const std::string kRun = "TempFile commands clish commands ";

// A test that runs the shipped executables inside the private root. Every test starts with the
// files as they left the factory and with empty records.
class Unit : public testing::Test {
 public:
  static constexpr const char* kCgi = "/var/tevo/website/www/cgi-bin/onu-cgi";
  static constexpr const char* kSettings = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml";
  static constexpr const char* kProfile = "/etc/xml_params/onu_profile_xml_cfg_file.xml";
  static constexpr const char* kUpload = "/tmp/recFile";

  static void reset();  // puts the unit back into the state in which every test starts

  // Runs a line of the host's shell; the records are those of this run alone.
  static Outcome run(const std::string& line, const Request& request = {});
  static Outcome cgi(const Request& request) { return run(kCgi, request); }
  // The whole reply to a GET.
  static std::string reply(const std::string& query) { return cgi(get(query)).out; }
  // The settings files and all in /tmp, a line with name and digest each.
  static std::string files();

  using Files = std::map<std::string, std::string>;  // settings files by name
  static constexpr const char* kAbsent = "absent";   // instead of the content of a file
  static std::string path(const std::string& file);
  // Checks each case on a unit with settings in which every value is a text of its own, of two
  // ports and ten queues, but where `other` has a file.
  static void check(const std::vector<Case>& cases, const Files& other = {});
  // The same where groups are empty, where there are none, where no file is one, without the files.
  static void checkWithoutValues(const std::vector<Case>& cases);

 protected:
  void SetUp() override;
};

}  // namespace onu::test
