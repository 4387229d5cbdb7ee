#pragma once

#include <string>

namespace onu {

// The unit's MAC address, which lives both in the bootloader environment and in the settings.

// Reads the address of the bootloader environment, at most 17 characters of it, into `mac`. -1 with
// `mac` untouched when the environment has none.
int readBootloaderMac(std::string& mac);

// Writes `mac` into the bootloader environment. Not checked.
void writeBootloaderMac(const std::string& mac);

// Writes `mac` into the main settings, then puts the factory copy of the settings into the web
// server's folder. -1, with nothing copied, when the settings have no place for the address.
int storeMacInSettings(const std::string& mac);

}  // namespace onu
