#include "device/shell.h"

#include <cstdlib>

#include "base/text.h"

namespace onu {

void runShell(std::initializer_list<std::string_view> parts) {
  // NOLINTNEXTLINE(bugprone-command-processor,cert-env33-c): the unit's tools are shell commands
  static_cast<void>(!std::system(concat(parts).c_str()));
}

}  // namespace onu
