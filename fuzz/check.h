#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace onu::fuzz {

// Ends the run with a finding unless the condition holds.
#define REQUIRE(condition) ::onu::fuzz::check((condition), #condition)

inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Ends the run with a finding, saying `what` did not hold.
inline void check(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace onu::fuzz
