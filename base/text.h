#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace onu {

// The parts one after another.
std::string concat(std::initializer_list<std::string_view> parts);

}  // namespace onu
