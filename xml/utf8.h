// UTF-8 output.
#pragma once

#include <cstdint>

namespace xml::internal {

// Writes a value of up to 31 bits, six bytes at most, and returns the place behind it.
inline char* putUtf8(uint32_t value, char* to) {
  if (value < 0x80) {
    *to++ = static_cast<char>(value);
    return to;
  }
  int bitCount = 32 - __builtin_clz(value);
  int more = (bitCount - 2) / 5;
  *to++ = static_cast<char>((0xFFu << (7 - more)) | (value >> (6 * more)));
  while (more-- != 0) *to++ = static_cast<char>(0x80 | ((value >> (6 * more)) & 0x3F));
  return to;
}

}  // namespace xml::internal
