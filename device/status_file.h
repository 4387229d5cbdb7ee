#pragma once

#include <string>

namespace onu {

// Reads a status file of a driver as a whole into `text`. Returns 0, or -1 with `text` untouched
// when it cannot be opened. A read error ends the text where it occurs: a driver that gives up
// half-way leaves the values it has printed.
int readStatusFile(const char* path, std::string& text);

}  // namespace onu
