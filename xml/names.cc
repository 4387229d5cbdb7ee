#include "xml/names.h"

#include <sys/auxv.h>

#include <cstring>

namespace onu::xml::internal {

// The keys are the kernel's random bytes for this process.
KeyedHash::KeyedHash() {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this entry of the auxiliary vector is an address
  const auto* const random = reinterpret_cast<const char*>(getauxval(AT_RANDOM));
  if (random != nullptr) {
    std::memcpy(keys_, random + sizeof(keys_), sizeof(keys_));
  }
}

// The whole product is kept. What a difference between two names becomes in it depends on the keys,
// so no file can be made to cancel it with a later one.
std::uint64_t KeyedHash::mix(std::uint64_t state) const {
  const std::uint32_t low = static_cast<std::uint32_t>(state) ^ keys_[0];
  const std::uint32_t high = static_cast<std::uint32_t>(state >> 32) ^ keys_[1];
  return std::uint64_t{low} * high;
}

std::size_t KeyedHash::operator()(std::string_view name) const {
  std::uint64_t state = mix(name.size());
  for (; name.size() >= sizeof(std::uint64_t); name.remove_prefix(sizeof(std::uint64_t))) {
    std::uint64_t word = 0;
    std::memcpy(&word, name.data(), sizeof(word));
    state = mix(state ^ word);
  }
  std::uint64_t rest = 0;
  for (const char c : name) {
    rest = rest << 8 | static_cast<unsigned char>(c);
  }
  state = mix(state ^ rest);
  return static_cast<std::uint32_t>(state ^ state >> 32);
}

}  // namespace onu::xml::internal
