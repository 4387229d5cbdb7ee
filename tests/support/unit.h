#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace onu::test {

using Texts = std::vector<std::string>;

// What the web server hands to the CGI program.
struct Request {
  std::map<std::string, std::string> environment;
  std::string body;
};

Request get(const std::string& query);
// A form, and an upload to a URL with a query string; `length` is announced for the body's own.
Request post(const std::string& body, const std::string& length = "");
Request upload(const std::string& query, const std::string& body, const std::string& length = "");

// What came of it.
struct Outcome {
  std::string out;
  std::string err;
  int status;      // exit status, or 128 and the number of the signal
  Texts commands;  // texts given to the unit's shell, in order
  Texts scripts;   // what the command shell was fed
};

// The reply around a JSON body, and an error page, as the pages get them.
std::string json(const std::string& body);
std::string errorPage(int code, const std::string& message);

std::string readFile(const std::string& path);                     // empty when it cannot be read
void writeFile(const std::string& path, const std::string& text);  // makes the folders it needs
Texts split(const std::string& text, char end);  // the pieces, less the character that ends each
bool exists(const std::string& path);

// A test that runs the shipped executables inside the private root. Every test starts with the
// files as they left the factory and with empty records.
class Unit : public testing::Test {
 public:
  static constexpr const char* kCgi = "/var/tevo/website/www/cgi-bin/onu-cgi";
  static constexpr const char* kSettings = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml";
  static constexpr const char* kProfile = "/etc/xml_params/onu_profile_xml_cfg_file.xml";
  static constexpr const char* kUpload = "/tmp/recFile";

  // Puts the unit back into the state in which every test starts.
  static void reset();

  // Runs a program; the records are those of this run alone.
  static Outcome run(const std::string& program, Texts arguments, const Request& request = {});
  static Outcome cgi(const Request& request) { return run(kCgi, {}, request); }
  static Outcome shell(const std::string& line, const Request& request = {}) {
    return run("/bin/busybox", {"sh", "-c", line}, request);
  }
  // The whole reply to a GET.
  static std::string reply(const std::string& query) { return cgi(get(query)).out; }

 protected:
  void SetUp() override;
};

}  // namespace onu::test
