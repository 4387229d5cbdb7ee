#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace onu::test {

// What the web server hands to the CGI program.
struct Request {
  std::map<std::string, std::string> environment;
  std::string body;
  bool closeOutput = false;  // run with standard output closed
};

Request get(const std::string& query);
Request post(const std::string& text);
// An upload of `body`, announced with `length` bytes, to a URL with the query string `query`.
Request upload(const std::string& query, const std::string& body, const std::string& length);
Request upload(const std::string& query, const std::string& body);

// What came of it.
struct Outcome {
  std::string out;
  std::string err;
  int status = -1;                    // exit status, or 128 and the number of the signal
  std::vector<std::string> commands;  // texts given to the unit's shell, in order
  std::vector<std::string> tools;     // calls of reboot, ifconfig and the flash tools, in order
  std::vector<std::string> scripts;   // what the command shell was fed
};

// The reply around a JSON body, and an error page, as the pages get them.
std::string json(const std::string& body);
std::string errorPage(int code, const std::string& message);

std::string readFile(const std::string& path);                     // empty when it cannot be read
void writeFile(const std::string& path, const std::string& text);  // makes the folders it needs
bool exists(const std::string& path);

// A test that runs the shipped executables inside the private root. Every test starts with the
// files as they left the factory and with empty records.
class Unit : public testing::Test {
 public:
  static constexpr const char* kCounters = "/sys/devices/platform/epon/pm/allCnt";
  static constexpr const char* kInfo = "/sys/devices/platform/epon/info/infoEpon";
  static constexpr const char* kSettings = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml";
  static constexpr const char* kUpload = "/tmp/recFile";

  // Puts the unit back into the state in which every test starts.
  static void reset();

  // Runs `program` with `arguments`; the records are those of this run alone.
  static Outcome run(const std::string& program, const std::vector<std::string>& arguments,
                     const Request& request = {});
  static Outcome cgi(const Request& request);
  static Outcome init(const std::vector<std::string>& arguments = {});
  // The whole reply to a GET.
  static std::string reply(const std::string& query) { return cgi(get(query)).out; }

 protected:
  void SetUp() override;
};

}  // namespace onu::test
