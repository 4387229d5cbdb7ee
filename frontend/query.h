#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace onu {

// A request text of the form cmd_id=N&action=M&name=value&..., with its two numbers taken out.
struct ParsedQuery {
  std::int32_t commandNumber = 0;
  std::int32_t action = 0;
  std::string text;  // the whole request text
};

// Fills `query` from `text`. Empty text changes nothing; a number whose name does not occur, or
// which has no value, keeps what `query` held. The names are searched as plain substrings, so
// xcmd_id=3 is command 3.
void parseQuery(ParsedQuery& query, std::string_view text);

// The value of the parameter `name`: what follows the first occurrence of the name and one further
// character (the "="), up to the next "&" or the end of the text; empty when the name is empty or
// does not occur. A plain substring search: "pwd" also finds "pwdold", with "ld=..." as its value.
// Escapes (%20, +) are not decoded: the pages read them back as they sent them.
std::string getParam(const ParsedQuery& query, std::string_view name);

}  // namespace onu
