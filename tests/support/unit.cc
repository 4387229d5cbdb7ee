#include "tests/support/unit.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace onu::test {
namespace fs = std::filesystem;

Request get(const std::string& query) {
  return {{{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}, ""};
}

Request post(const std::string& body, const std::string& length) {
  return {{{"REQUEST_METHOD", "POST"},
           {"CONTENT_TYPE", "application/x-www-form-urlencoded"},
           {"CONTENT_LENGTH", length.empty() ? std::to_string(body.size()) : length}},
          body};
}

Request upload(const std::string& query, const std::string& body, const std::string& length) {
  Request request = post(body, length);
  request.environment["QUERY_STRING"] = query;
  request.environment["CONTENT_TYPE"] = "multipart/form-data; boundary=x";
  return request;
}

std::string json(const std::string& body) {
  return "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n" + body +
         "\n";
}

std::string errorPage(int code, const std::string& message) {
  const std::string number = std::to_string(code);
  return "HTTP/1.1 " + number + message + "\nConnection:close\n<HTML><BODY><p>Error:" + number +
         " -- " + message + "</p></BODY></HTML>\n";
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  ASSERT_TRUE(file.good()) << "cannot write " << path;
}

Texts split(const std::string& text, char end) {
  std::istringstream rest(text);
  Texts pieces;
  for (std::string piece; std::getline(rest, piece, end);) {
    pieces.push_back(piece);
  }
  return pieces;
}

bool exists(const std::string& path) { return fs::exists(fs::symlink_status(path)); }

void Unit::reset() {
  for (const char* folder : {"/etc", "/var", "/sys", "/tmp", "/record", "/small"}) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      fs::remove_all(entry.path());
    }
  }
  fs::copy("/factory", "/", fs::copy_options::recursive);
}

void Unit::SetUp() {
  ASSERT_TRUE(exists("/factory")) << "run this inside a unit: sim/unit run BUILD /build/NAME";
  reset();
}

Outcome Unit::run(const std::string& program, Texts arguments, const Request& request) {
  fs::remove("/record/commands");
  fs::remove("/record/clish");
  arguments.insert(arguments.begin(), program);
  std::vector<char*> words;
  for (std::string& argument : arguments) {
    words.push_back(argument.data());
  }
  words.push_back(nullptr);
  int streams[3];
  std::generate(std::begin(streams), std::end(streams),
                [] { return ::memfd_create("stream", MFD_CLOEXEC); });
  const auto path = [&](int stream) { return "/proc/self/fd/" + std::to_string(streams[stream]); };
  writeFile(path(STDIN_FILENO), request.body);
  const pid_t child = ::fork();
  if (child == 0) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      ::dup2(streams[stream], stream);
    }
    ::signal(SIGPIPE, SIG_DFL);
    ::clearenv();
    ::setenv("PATH", "/bin:/sbin", 1);
    for (const auto& [variable, value] : request.environment) {
      ::setenv(variable.c_str(), value.c_str(), 1);
    }
    ::execv(words[0], words.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  Outcome outcome = {readFile(path(STDOUT_FILENO)), readFile(path(STDERR_FILENO)),
                     WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                     split(readFile("/record/commands"), '\0'),
                     split(readFile("/record/clish"), '\0')};
  std::for_each(std::begin(streams), std::end(streams), ::close);
  return outcome;
}

}  // namespace onu::test
