#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace onu::fuzz {

inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Ends the run with a finding, saying what does not hold, unless the condition does.
#define REQUIRE(condition)                                   \
  do {                                                       \
    if (!(condition)) {                                      \
      std::fputs("does not hold: " #condition "\n", stderr); \
      std::abort();                                          \
    }                                                        \
  } while (false)

}  // namespace onu::fuzz
