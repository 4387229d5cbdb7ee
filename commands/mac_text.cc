#include "commands/mac_text.h"

#include <stdexcept>

namespace onu {

std::string withoutSeparators(std::string mac) {
  if (mac.size() < 14) {
    throw std::out_of_range("value of onu_mac is shorter than 14 characters: it has " +
                            std::to_string(mac.size()));
  }
  for (std::size_t at = 2; at <= 10; at += 2) {
    mac.erase(at, 1);  // after the ones before are gone
  }
  return mac;
}

}  // namespace onu
