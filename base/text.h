#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace onu {

// The parts one after another.
std::string concat(std::initializer_list<std::string_view> parts);

// The same for literals, by the compiler, so that a path stands once and a command line with it
// costs a request nothing: join("rm ", kPath).data().
template <std::size_t... sizes>
constexpr auto join(const char (&... parts)[sizes]) {
  std::array<char, (sizes + ...) - sizeof...(sizes) + 1> text{};
  std::size_t end = 0;
  const auto append = [&text, &end](const char* part) {
    while (*part != '\0') {
      text[end++] = *part++;
    }
  };
  (append(parts), ...);
  return text;
}

}  // namespace onu
