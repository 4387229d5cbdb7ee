#pragma once

#include <csignal>
#include <initializer_list>
#include <string_view>

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

// Writes a line of the parts to standard output at once, unbuffered: messages keep their order with
// the output of the tools that are started after them. Whether anybody reads them does not matter.
// At most 8 parts, here and below.
void printLine(std::initializer_list<std::string_view> parts);

// The same on standard error, for messages that have a form of their own.
void printErrorLine(std::initializer_list<std::string_view> parts);

// Says on standard error, the log of the web server, what failed on what: a line of the parts
// behind "onu-cgi: command 5: ", without the command while that is not known. Takes no memory, so
// it works when there is none.
void complain(std::initializer_list<std::string_view> parts);

// The command that later complaints name; 0 for none.
void setCommandOfComplaints(int number);

}  // namespace onu
