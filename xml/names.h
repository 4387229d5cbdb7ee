// Tables that find a number by a name from the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace onu::xml::internal {

// Hashes with keys that nobody outside the process knows, so that no file can be made whose names
// collide: without them, a crafted file of 1 MiB would cost minutes.
class KeyedHash {
 public:
  KeyedHash();
  std::size_t operator()(std::string_view name) const;

 private:
  std::uint64_t mix(std::uint64_t state) const;

  std::uint32_t keys_[2] = {0x9E3779B9, 0x7F4A7C15};
};

// The names are not copied and must outlive the table.
using NameTable = std::unordered_map<std::string_view, std::size_t, KeyedHash>;

}  // namespace onu::xml::internal
