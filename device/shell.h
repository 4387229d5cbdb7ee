#pragma once

#include <initializer_list>
#include <string_view>

namespace onu {

// Runs the command line that the parts make together with the unit's shell and waits for it. Its
// outcome is never examined: the unit's tools report nothing that a request or the start-up could
// act on.
void runShell(std::initializer_list<std::string_view> parts);

}  // namespace onu
