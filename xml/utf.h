// UTF-8 output and UTF-16 input.
#pragma once

#include <cstddef>
#include <cstdint>

namespace onu::xml::internal {

// Writes a value of up to 31 bits, six bytes at most, and returns the place behind it.
char* putUtf8(std::uint32_t value, char* to);

// Converts text that starts with a UTF-16 byte-order mark, of either order, to UTF-8 without one. A
// surrogate without its other half becomes U+FFFD, an odd byte at the end nothing. The caller
// releases the result with free(); nullptr for any other text.
char* utf8FromUtf16(const char* text, std::size_t length, std::size_t* newLength);

}  // namespace onu::xml::internal
