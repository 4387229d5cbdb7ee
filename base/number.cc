#include "base/number.h"

#include <cstddef>
#include <limits>

namespace onu {
namespace {

constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

std::int32_t toNumber(std::string_view text) {
  constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::size_t at = 0;
  while (at < text.size() && isSpace(text[at])) {
    ++at;
  }
  bool negative = false;
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
    negative = text[at++] == '-';
  }
  std::int64_t magnitude = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    magnitude = magnitude * 10 + (text[at] - '0');
    if (magnitude >= kLimit) {
      magnitude = negative ? kLimit : kLimit - 1;
    }
  }
  return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

}  // namespace onu
