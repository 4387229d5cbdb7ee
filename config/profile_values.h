#pragma once

#include <string>
#include <string_view>

namespace onu {

// How values of the ONU profile become the texts that the pages show. Any text is accepted.

// What follows the prefix "0x": the third character on, whatever the first two are. Empty for a
// shorter value.
std::string withoutPrefix(std::string_view value);

// A date yyyy/mm/dd of a value such as 0x130514 (2019/05/20): two hexadecimal digits each for the
// years since 2000, the month and the day. A pair counts as far as it has digits, 0 without any;
// whether there is such a day is not checked.
std::string chipDate(std::string_view value);

// The firmware version 01.02.03 of a value such as 0x010203: a dot after every second character
// behind the prefix. At most 31 characters; what is longer is cut.
std::string dottedVersion(std::string_view value);

// The name of a numeric ONU type; a number without a name stays as it is, and a text that is not a
// number is type 0.
std::string onuTypeName(std::string_view type);

}  // namespace onu
