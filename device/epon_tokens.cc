#include "device/epon_tokens.h"

#include <algorithm>

namespace onu {
namespace {

constexpr std::size_t kPrefix = 5;  // the opening bracket and four characters of the driver's own

// The part of a "[" line that holds tokens; empty for any other line.
std::string_view tokenPart(std::string_view line) {
  if (line.size() <= kPrefix || line.front() != '[') {
    return {};
  }
  return line.substr(kPrefix, line.size() - 1 - kPrefix);
}

}  // namespace

void splitTokens(std::string_view text, TokenIndex indexing, std::string* tokens,
                 std::size_t count) {
  std::size_t index = 0;
  bool inToken = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view part = tokenPart(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (indexing == TokenIndex::kPerLine) {
      index = 0;
      inToken = false;
    }
    for (const char c : part) {
      if (c == ' ') {
        index += inToken ? 1 : 0;
        inToken = false;
        continue;
      }
      inToken = true;
      if (index < count) {
        tokens[index].push_back(c);
      }
    }
  }
}

}  // namespace onu
