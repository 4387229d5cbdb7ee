#include "device/shell.h"

#include <cstdlib>

namespace onu {

void runShell(const std::string& command) {
  // NOLINTNEXTLINE(bugprone-command-processor,cert-env33-c): the unit's tools are shell commands
  static_cast<void>(!std::system(command.c_str()));
}

}  // namespace onu
