// Input: the length of a parameter's name (one byte), the name, the request text.

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

#include "frontend/query.h"
#include "fuzz/check.h"

namespace {

constexpr std::int32_t kUntouched = -7;

bool standsAt(const std::string& text, std::size_t at, const std::string& name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (at + i >= text.size() || text[at + i] != name[i]) {
      return false;
    }
  }
  return true;
}

std::string naiveValue(const std::string& text, const std::string& name) {
  std::string value;
  for (std::size_t at = 0; !name.empty() && at < text.size(); ++at) {
    if (standsAt(text, at, name)) {
      for (at += name.size() + 1; at < text.size() && text[at] != '&'; ++at) {
        value.push_back(text[at]);
      }
      break;
    }
  }
  return value;
}

std::int32_t naiveNumber(const std::string& text, const std::string& name) {
  using Limits = std::numeric_limits<std::int32_t>;
  const std::string value = naiveValue(text, name);
  if (value.empty()) {
    return kUntouched;
  }
  const long long number = std::strtoll(value.c_str(), nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string_view input = onu::fuzz::asText(data + 1, size - 1);
  const std::string name(input.substr(0, data[0]));
  const std::string text(input.substr(name.size()));

  onu::ParsedQuery query;
  query.commandNumber = kUntouched;
  query.action = kUntouched;
  onu::parseQuery(query, text);
  REQUIRE(query.text == text);
  REQUIRE(query.commandNumber == naiveNumber(text, "cmd_id"));
  REQUIRE(query.action == naiveNumber(text, "action"));
  REQUIRE(onu::getParam(query, name) == naiveValue(text, name));
  return 0;
}
