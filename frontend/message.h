#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

#include "frontend/fd.h"

namespace onu {

// Writes `text` and a line feed to standard output at once, unbuffered: messages keep their order
// with the output of the tools that are started after them.
inline void printLine(std::string_view text) {
  writeFully(STDOUT_FILENO, std::string(text).append("\n"));
}

}  // namespace onu
