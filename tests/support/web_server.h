#pragma once

#include <sys/types.h>

#include <string>

namespace onu::test {

// The unit's web server, on the unit's own loopback, from its construction on.
class WebServer {
 public:
  WebServer();
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // All that the server answers to these bytes until it closes the connection, which completes the
  // page; a failure when that takes too long.
  std::string exchange(const std::string& request) const;

 private:
  pid_t process_ = -1;
};

std::string httpGet(const std::string& path);
// A page's form with one file.
std::string httpUpload(const std::string& path, const std::string& file);
// What stands behind the headers of a static file.
std::string httpBody(const std::string& answer);

}  // namespace onu::test
