#include "base/message.h"

#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>

namespace onu {
namespace {

constexpr std::size_t kMostParts = 8;

int g_command = 0;

// One line in one call, so that those of several processes do not mix.
class Line {
 public:
  void add(std::initializer_list<std::string_view> parts) {
    for (const std::string_view part : parts) {
      if (count_ < pieces_.size()) {
        pieces_[count_++] = {const_cast<char*>(part.data()), part.size()};
      }
    }
  }
  void writeTo(int fd) {
    add({"\n"});
    const BrokenPipeGuard guard;
    static_cast<void>(!::writev(fd, pieces_.data(), static_cast<int>(count_)));
  }

 private:
  std::array<iovec, kMostParts + 6> pieces_;  // with program, command and line end
  std::size_t count_ = 0;
};

}  // namespace

void printLine(std::initializer_list<std::string_view> parts) {
  Line line;
  line.add(parts);
  line.writeTo(STDOUT_FILENO);
}

void printErrorLine(std::initializer_list<std::string_view> parts) {
  Line line;
  line.add(parts);
  line.writeTo(STDERR_FILENO);
}

void complain(std::initializer_list<std::string_view> parts) {
  Line line;
  line.add({program_invocation_short_name, ": "});
  std::array<char, 12> digits;
  if (g_command != 0) {
    const char* const end = std::to_chars(digits.begin(), digits.end(), g_command).ptr;
    line.add({"command ", {digits.data(), static_cast<std::size_t>(end - digits.data())}, ": "});
  }
  line.add(parts);
  line.writeTo(STDERR_FILENO);
}

void setCommandOfComplaints(int number) { g_command = number; }

}  // namespace onu
