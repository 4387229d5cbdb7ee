// Input: the number of slots (one byte), the file's text.

#include <string>
#include <vector>

#include "device/epon_tokens.h"
#include "fuzz/check.h"

namespace {

constexpr std::size_t kMaxSlots = 41;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back().push_back(c);
    }
  }
  return lines;
}

std::vector<std::string> naiveTokens(const std::string& text, onu::TokenIndex indexing) {
  std::vector<std::string> tokens(1);
  std::size_t index = 0;
  char previous = ' ';
  for (const std::string& line : linesOf(text)) {
    if (line.empty() || line[0] != '[') {
      continue;
    }
    if (indexing == onu::TokenIndex::kPerLine) {
      index = 0;
      previous = ' ';
    }
    for (std::size_t at = 5; at + 1 < line.size(); ++at) {
      if (line[at] != ' ') {
        tokens[index].push_back(line[at]);
      } else if (previous != ' ') {
        ++index;
        tokens.resize(std::max(tokens.size(), index + 1));
      }
      previous = line[at];
    }
  }
  return tokens;
}

bool agrees(const std::string& text, onu::TokenIndex indexing, std::size_t count) {
  std::vector<std::string> want = naiveTokens(text, indexing);
  want.resize(count);
  std::vector<std::string> tokens(count);
  onu::splitTokens(text, indexing, tokens.data(), tokens.size());
  return tokens == want;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) {
    const std::string text(onu::fuzz::asText(data + 1, size - 1));
    const std::size_t count = data[0] % kMaxSlots;
    REQUIRE(agrees(text, onu::TokenIndex::kPerFile, count));
    REQUIRE(agrees(text, onu::TokenIndex::kPerLine, count));
  }
  return 0;
}
