#include "xml/output.h"

namespace xml::internal {

char* Output::grow(char* at, size_t bytes) {
  size_t used = size(at);
  size_t capacity = 2 * static_cast<size_t>(end_ - data_) + bytes;
  data_ = static_cast<char*>(reallocate(data_, capacity));
  end_ = data_ + capacity;
  return data_ + used;
}

char* Output::putEscape(char* at, char c) {
  switch (c) {
    case '&':
      return put(at, "&amp;", 5);
    case '<':
      return put(at, "&lt;", 4);
    case '>':
      return put(at, "&gt;", 4);
    case '"':
      return put(at, "&quot;", 6);
    case '\n':
      return put(at, "&#xA;", 5);
    case '\t':
      return put(at, "&#x9;", 5);
    case '\r':
      return put(at, "&#xD;", 5);
    default:
      return put(at, &c, 1);
  }
}

char* Output::release(char* at) {
  at = put(at, "", 1);
  return static_cast<char*>(reallocate(data_, size(at)));
}

}  // namespace xml::internal
