#include "base/message.h"

#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>

namespace onu {
namespace {

using Parts = std::initializer_list<std::string_view>;

constexpr std::size_t kMostParts = 8;

int g_command = 0;

// One line in one call, so that those of several processes do not mix.
void writeLine(int fd, Parts head, Parts parts) {
  std::array<iovec, kMostParts + 5> pieces;  // with a head of four and the line end
  std::size_t count = 0;
  const auto add = [&](std::string_view part) {
    if (count < pieces.size()) {
      pieces[count++] = {const_cast<char*>(part.data()), part.size()};
    }
  };
  std::for_each(head.begin(), head.end(), add);
  std::for_each(parts.begin(), parts.end(), add);
  add("\n");
  const BrokenPipeGuard guard;
  static_cast<void>(!::writev(fd, pieces.data(), static_cast<int>(count)));
}

}  // namespace

void printLine(Parts parts) { writeLine(STDOUT_FILENO, {}, parts); }

void printErrorLine(Parts parts) { writeLine(STDERR_FILENO, {}, parts); }

void complain(Parts parts) {
  const std::string_view program = program_invocation_short_name;
  if (g_command == 0) {
    return writeLine(STDERR_FILENO, {program, ": "}, parts);
  }
  std::array<char, 12> digits;
  const char* const end = std::to_chars(digits.begin(), digits.end(), g_command).ptr;
  const std::string_view number(digits.data(), static_cast<std::size_t>(end - digits.data()));
  writeLine(STDERR_FILENO, {program, ": command ", number, ": "}, parts);
}

void setCommandOfComplaints(int number) { g_command = number; }

}  // namespace onu
