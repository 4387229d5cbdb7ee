#pragma once

#include <cstddef>
#include <string_view>

#include "base/fd.h"

namespace onu {

// The diagnostic log "/var/cgi.log". It keeps its newest 2 MiB: what exceeds them is dropped from
// the front, at a byte position. Several processes writing at once may lose lines. No command
// writes to it.
class CgiLog {
 public:
  // Opens the log on first use, never destroyed. A log that cannot be opened takes no lines.
  static CgiLog& getInstance();

  // Appends the time stamp, `message` and a line feed; nothing for an empty message.
  void writeLine(std::string_view message);

  static constexpr std::size_t kStampSize = 24;  // with its terminating zero

  // Writes "[year-month-day hour:minute:second]", local time and zero-terminated, to the 24 bytes
  // at `stamp`; nothing when it is null.
  static void formatTimeStamp(char* stamp);

 private:
  CgiLog();
  void keepTail(std::size_t excess);

  Fd file_;
};

}  // namespace onu
