#pragma once

#include <array>
#include <cstddef>

namespace onu {

// A literal that the compiler puts together from others, so that a path stands once and a command
// line with it costs a request nothing: join("rm ", kPath).data().
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
