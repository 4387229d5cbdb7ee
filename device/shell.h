#pragma once

#include <string>

namespace onu {

// Runs `command` with the unit's shell and waits for it. Its outcome is never examined: the unit's
// tools report nothing that a request or the start-up could act on.
void runShell(const std::string& command);

}  // namespace onu
