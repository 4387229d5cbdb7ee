// UTF-16 input.
#pragma once

#include <cstddef>

namespace xml::internal {

// Converts text that starts with a UTF-16 byte-order mark, of either order, to UTF-8 without one. A
// surrogate without its other half becomes U+FFFD, an odd byte at the end nothing. The caller
// releases the result with free(); NULL for any other text.
char* utf8FromUtf16(const char* text, size_t length, size_t* newLength);

}  // namespace xml::internal
