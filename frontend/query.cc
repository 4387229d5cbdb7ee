#include "frontend/query.h"

#include "base/number.h"

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

}  // namespace onu
