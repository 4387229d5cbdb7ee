#include "tests/support/unit.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace onu::test {
namespace fs = std::filesystem;
namespace {

constexpr const char* kCgi = "/var/tevo/website/www/cgi-bin/onu-cgi";

struct Pipe {
  Pipe() {
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      std::abort();
    }
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  void closeEnd(int which) {
    if (ends[which] >= 0) {
      ::close(ends[which]);
      ends[which] = -1;
    }
  }
  int ends[2] = {-1, -1};
};

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    pieces.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return pieces;
}

// Feeds the body and collects both outputs until the child has closed them.
void converse(const std::string& body, Pipe& in, Pipe& out, Pipe& err, Outcome& outcome) {
  std::size_t sent = 0;
  if (body.empty()) {
    in.closeEnd(1);
  }
  while (out.ends[0] >= 0 || err.ends[0] >= 0) {
    std::array<pollfd, 3> waiting = {
        {{in.ends[1], POLLOUT, 0}, {out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    ::poll(waiting.data(), waiting.size(), -1);
    if (waiting[0].revents != 0) {
      const ssize_t put = ::write(in.ends[1], body.data() + sent, body.size() - sent);
      sent += put > 0 ? static_cast<std::size_t>(put) : 0;
      if (put < 0 || sent == body.size()) {
        in.closeEnd(1);
      }
    }
    std::array<char, 65536> buffer;
    const auto take = [&](const pollfd& ready, Pipe& from, std::string& text) {
      if (ready.revents == 0) {
        return;
      }
      const ssize_t got = ::read(from.ends[0], buffer.data(), buffer.size());
      if (got <= 0) {
        return from.closeEnd(0);
      }
      text.append(buffer.data(), static_cast<std::size_t>(got));
    };
    take(waiting[1], out, outcome.out);
    take(waiting[2], err, outcome.err);
  }
}

[[noreturn]] void become(const std::string& program, const std::vector<std::string>& arguments,
                         const Request& request, Pipe& in, Pipe& out, Pipe& err) {
  ::dup2(in.ends[0], STDIN_FILENO);
  ::dup2(out.ends[1], STDOUT_FILENO);
  ::dup2(err.ends[1], STDERR_FILENO);
  if (request.closeOutput) {
    ::close(STDOUT_FILENO);
  }
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = {"PATH=/bin:/sbin"};
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
    if (const char* const value = std::getenv(name)) {
      variables.push_back(std::string(name) + "=" + value);
    }
  }
  for (const auto& [name, value] : request.environment) {
    variables.push_back(name + "=" + value);
  }
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts) {
      list.push_back(text.data());
    }
    list.push_back(nullptr);
    return list;
  };
  ::signal(SIGPIPE, SIG_DFL);
  ::execve(program.c_str(), pointers(words).data(), pointers(variables).data());
  ::_exit(127);
}

}  // namespace

Request get(const std::string& query) {
  return {{{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}, ""};
}

Request post(const std::string& text) {
  return {{{"REQUEST_METHOD", "POST"},
           {"CONTENT_TYPE", "application/x-www-form-urlencoded"},
           {"CONTENT_LENGTH", std::to_string(text.size())}},
          text};
}

Request upload(const std::string& query, const std::string& body, const std::string& length) {
  return {{{"REQUEST_METHOD", "POST"},
           {"QUERY_STRING", query},
           {"CONTENT_TYPE", "multipart/form-data; boundary=x"},
           {"CONTENT_LENGTH", length}},
          body};
}

Request upload(const std::string& query, const std::string& body) {
  return upload(query, body, std::to_string(body.size()));
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

Outcome Unit::run(const std::string& program, const std::vector<std::string>& arguments,
                  const Request& request) {
  for (const char* record : {"/record/commands", "/record/tools", "/record/clish"}) {
    fs::remove(record);
  }
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t child = ::fork();
  if (child == 0) {
    become(program, arguments, request, in, out, err);
  }
  in.closeEnd(0);
  out.closeEnd(1);
  err.closeEnd(1);
  ::signal(SIGPIPE, SIG_IGN);
  Outcome outcome;
  converse(request.body, in, out, err, outcome);
  int status = 0;
  ::waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  outcome.commands = split(readFile("/record/commands"), '\0');
  outcome.tools = split(readFile("/record/tools"), '\n');
  outcome.scripts = split(readFile("/record/clish"), '\0');
  return outcome;
}

Outcome Unit::cgi(const Request& request) { return run(kCgi, {}, request); }

Outcome Unit::init(const std::vector<std::string>& arguments) {
  return run("/usr/sbin/onu-init", arguments);
}

}  // namespace onu::test
