#pragma once

#include <cstdint>
#include <string_view>

namespace onu {

// The leading decimal number of `text` (white space and a sign before it are allowed), 0 without
// one. Beyond 32 bits it stops at the nearest limit, as the unit's own conversion does.
std::int32_t toNumber(std::string_view text);

}  // namespace onu
