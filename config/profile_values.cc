#include "config/profile_values.h"

#include <algorithm>
#include <iterator>

#include "base/number.h"

namespace onu {
namespace {

constexpr std::size_t kPrefix = 2;  // "0x"

constexpr std::string_view kOnuTypes[] = {
    "SFU", "HGU", "SBU", "CBU", "MDU", "MTU", "1FE+1POTS SFU", "Mixed HGU",
};

// -1 for a character that is no hexadecimal digit.
int hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

int hexPair(std::string_view value, std::size_t at) {
  int number = 0;
  for (std::size_t i = at; i < at + 2 && i < value.size(); ++i) {
    const int digit = hexDigit(value[i]);
    if (digit < 0) {
      break;
    }
    number = number * 16 + digit;
  }
  return number;
}

std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

}  // namespace

std::string withoutPrefix(std::string_view value) {
  return std::string(value.size() < kPrefix ? std::string_view() : value.substr(kPrefix));
}

std::string chipDate(std::string_view value) {
  return std::to_string(2000 + hexPair(value, 2)) + "/" + twoDigits(hexPair(value, 4)) + "/" +
         twoDigits(hexPair(value, 6));
}

std::string dottedVersion(std::string_view value) {
  constexpr std::size_t kLongest = 31;
  std::string version;
  for (std::size_t at = kPrefix; at < value.size() && version.size() < kLongest; ++at) {
    if (at > kPrefix && at % 2 == 0) {
      version.push_back('.');
    }
    version.push_back(value[at]);
  }
  version.resize(std::min(version.size(), kLongest));
  return version;
}

std::string onuTypeName(std::string_view type) {
  const std::int32_t number = toNumber(type);
  const bool named = number >= 0 && number < static_cast<std::int32_t>(std::size(kOnuTypes));
  return std::string(named ? kOnuTypes[number] : type);
}

}  // namespace onu
