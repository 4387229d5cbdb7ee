#pragma once

#include <csignal>
#include <string>
#include <string_view>

#include "frontend/fd.h"

namespace onu {

// Keeps a write to a reader that has gone from ending the process, for as long as it lives. Tools
// are started without it: they are written to end on a broken pipe.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() : before_(std::signal(SIGPIPE, SIG_IGN)) {}
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;
  ~BrokenPipeGuard() { std::signal(SIGPIPE, before_); }

 private:
  void (*before_)(int);
};

// Writes `text` and a line feed to standard output at once, unbuffered: messages keep their order
// with the output of the tools that are started after them. Whether anybody reads them does not
// matter.
inline void printLine(std::string_view text) {
  const BrokenPipeGuard guard;
  writeFully(STDOUT_FILENO, std::string(text).append("\n"));
}

}  // namespace onu
