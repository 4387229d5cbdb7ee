#pragma once

#include <string>
#include <string_view>

namespace onu {

// A name in a file or reply, bound to the text of a record that holds its value. The name is a
// literal, which nothing copies and a zero ends.
template <typename Record>
struct Field {
  std::string_view name;
  std::string Record::*member;
};

}  // namespace onu
