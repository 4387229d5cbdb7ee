#include "tests/support/web_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <thread>

namespace onu::test {
namespace {

constexpr std::uint16_t kPort = 8080;

// A connection to the server, which may have been started just before; -1 when it never listens.
int dial() {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(kPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  for (int i = 0; i < 500; ++i) {
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
      return connection;
    }
    ::close(connection);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return -1;
}

void sendAll(int connection, const std::string& data) {
  std::size_t sent = 0;
  while (sent < data.size()) {
    const ssize_t put = ::send(connection, &data[sent], data.size() - sent, MSG_NOSIGNAL);
    if (put <= 0) {
      return;
    }
    sent += static_cast<std::size_t>(put);
  }
}

}  // namespace

WebServer::WebServer() {
  const std::string address = "127.0.0.1:" + std::to_string(kPort);
  process_ = ::fork();
  if (process_ == 0) {
    ::signal(SIGPIPE, SIG_DFL);
    ::execl("/bin/httpd", "httpd", "-f", "-p", address.c_str(), "-h", "/var/tevo/website/www",
            nullptr);
    ::_exit(127);
  }
}

WebServer::~WebServer() {
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
}

std::string WebServer::exchange(const std::string& request) const {
  constexpr int kPatience = 20000;  // milliseconds
  const int connection = dial();
  sendAll(connection, request);
  std::string answer;
  std::array<char, 65536> buffer;
  pollfd waiting = {connection, POLLIN, 0};
  ssize_t got = 1;
  while (got > 0 && ::poll(&waiting, 1, kPatience) > 0) {
    got = ::recv(connection, buffer.data(), buffer.size(), 0);
    answer.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  }
  EXPECT_LE(got, 0) << "the page does not end";
  ::close(connection);
  return answer;
}

std::string httpGet(const std::string& path) { return "GET " + path + " HTTP/1.0\r\n\r\n"; }

std::string httpUpload(const std::string& path, const std::string& file) {
  const std::string head =
      "--x\r\nContent-Disposition: form-data; name=\"file\"; filename=\"file\"\r\n"
      "Content-Type: application/octet-stream\r\n\r\n";
  const std::string tail = "\r\n--x--\r\n";
  return "POST " + path + " HTTP/1.0\r\nContent-Type: multipart/form-data; boundary=x\r\n" +
         "Content-Length: " + std::to_string(head.size() + file.size() + tail.size()) + "\r\n\r\n" +
         head + file + tail;
}

std::string httpBody(const std::string& answer) {
  const std::size_t end = answer.find("\r\n\r\n");
  return end == std::string::npos ? "" : answer.substr(end + 4);
}

}  // namespace onu::test
