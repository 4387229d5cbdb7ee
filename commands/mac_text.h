#pragma once

#include <string>

namespace onu {

// The digits of a MAC address such as 00:11:22:33:44:55 without what separates them. Positions
// decide, not characters: those at 2, 4, 6, 8 and 10 go, one after another, whatever they are.
// Throws std::out_of_range, after a line on standard error that names the value, when `mac` is too
// short for one of them: there is no identity to make of it, and the request ends without a reply.
std::string withoutSeparators(std::string mac);

}  // namespace onu
