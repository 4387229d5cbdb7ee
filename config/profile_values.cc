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

std::size_t hexPair(std::string_view value, std::size_t at) {
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  std::size_t number = 0;
  for (const char c : value.substr(std::min(at, value.size()), 2)) {
    const std::size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) {
      break;
    }
    number = number * 16 + (digit < 16 ? digit : digit - 6);
  }
  return number;
}

std::string twoDigits(std::size_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

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
  return version;
}

std::string onuTypeName(std::string_view type) {
  const std::int32_t number = toNumber(type);
  const bool named = number >= 0 && number < static_cast<std::int32_t>(std::size(kOnuTypes));
  return std::string(named ? kOnuTypes[number] : type);
}

}  // namespace onu
