#include "commands/mac_text.h"

namespace onu {
namespace {

// Deletes the characters at positions 2, 4, ... up to `last`, each after the ones before are gone.
void eraseSeparators(std::string& digits, std::size_t last) {
  for (std::size_t at = 2; at <= last; at += 2) {
    digits.erase(at, 1);
  }
}

}  // namespace

std::string withoutSeparators(std::string mac) {
  eraseSeparators(mac, 10);
  return mac;
}

std::string lastFourOctets(const std::string& mac) {
  std::string digits = mac.substr(6);
  eraseSeparators(digits, 6);
  return digits;
}

}  // namespace onu
