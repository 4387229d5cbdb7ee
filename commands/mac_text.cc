#include "commands/mac_text.h"

#include "base/message.h"

namespace onu {
namespace {

// Up to the last separator. What is shorter the text library refuses to cut, without a name for it.
void complainIfTooShort(const std::string& mac) {
  if (mac.size() < 14) {
    complain(
        {"value of onu_mac is shorter than 14 characters: it has ", std::to_string(mac.size())});
  }
}

// Deletes the characters at positions 2, 4, ... up to `last`, each after the ones before are gone.
void eraseSeparators(std::string& digits, std::size_t last) {
  for (std::size_t at = 2; at <= last; at += 2) {
    digits.erase(at, 1);
  }
}

}  // namespace

std::string withoutSeparators(std::string mac) {
  complainIfTooShort(mac);
  eraseSeparators(mac, 10);
  return mac;
}

std::string lastFourOctets(const std::string& mac) {
  complainIfTooShort(mac);
  std::string digits = mac.substr(6);
  eraseSeparators(digits, 6);
  return digits;
}

}  // namespace onu
