#include "frontend/query.h"

#include <limits>

namespace onu {
namespace {

std::string_view findValue(std::string_view text, std::string_view name) {
  const std::size_t at = name.empty() ? std::string_view::npos : text.find(name);
  if (at == std::string_view::npos || at + name.size() >= text.size()) {
    return {};
  }
  const std::string_view rest = text.substr(at + name.size() + 1);
  return rest.substr(0, rest.find('&'));
}

void takeNumber(std::string_view text, std::string_view name, std::int32_t& number) {
  const std::string_view value = findValue(text, name);
  if (!value.empty()) {
    number = toNumber(value);
  }
}

constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

void parseQuery(ParsedQuery& query, std::string_view text) {
  if (text.empty()) {
    return;
  }
  query.text = text;
  takeNumber(text, "cmd_id", query.commandNumber);
  takeNumber(text, "action", query.action);
}

std::string getParam(const ParsedQuery& query, std::string_view name) {
  return std::string(findValue(query.text, name));
}

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
      break;
    }
  }
  return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

}  // namespace onu
