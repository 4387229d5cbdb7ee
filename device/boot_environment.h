#pragma once

#include <string>

namespace onu {

// The unit's MAC address in the bootloader environment; the settings hold it too.

// Reads the address of the bootloader environment, at most 17 characters of it, into `mac`. -1 with
// `mac` untouched when the environment has none.
int readBootloaderMac(std::string& mac);

// Writes `mac` into the bootloader environment. Not checked.
void writeBootloaderMac(const std::string& mac);

}  // namespace onu
