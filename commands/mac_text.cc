#include "commands/mac_text.h"

#include "base/message.h"

namespace onu {

std::string withoutSeparators(std::string mac) {
  if (mac.size() < 14) {
    // The text library will refuse to cut that, without a name for it.
    complain(
        {"value of onu_mac is shorter than 14 characters: it has ", std::to_string(mac.size())});
  }
  for (std::size_t at = 2; at <= 10; at += 2) {
    mac.erase(at, 1);  // after the ones before are gone
  }
  return mac;
}

}  // namespace onu
