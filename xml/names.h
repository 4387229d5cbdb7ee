// Tables that find a number by a name from the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace onu::xml::internal {

// Names with the order they were added in. They are not copied and must outlive the table. Constant
// time whatever the names are: they are hashed with keys that nobody outside the process knows, so
// that no file can be made whose names collide. A settings file hardly needs it, but children that
// all have names of their own take 19 instructions a byte to parse on the unit however many they
// are (script/bench machine, other_names), where 97 KiB of them took 2,900 without it, and the rest
// of a hostile file likewise.
class NameTable {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // Makes room for so many; before the first one is added.
  void reserve(std::size_t count) {
    names_.reserve(count);
    grow(2 * count + 1);
  }

  std::size_t size() const { return names_.size(); }
  std::string_view name(std::size_t i) const { return names_[i].text; }

  // The number of a name, from 0, or kNone.
  std::size_t find(std::string_view name) const;

  // The same of a name that is added where it is not there yet: then it is the size before.
  std::size_t add(std::string_view name);

  void clear();

 private:
  struct Name {
    std::string_view text;
    std::uint32_t hash;
  };

  std::uint64_t mix(std::uint64_t state) const;
  std::uint32_t hashOf(std::string_view name) const;
  std::size_t placeOf(const Name& name) const;
  void grow(std::size_t places);

  std::uint32_t keys_[2] = {0x9E3779B9, 0x7F4A7C15};
  std::vector<Name> names_;
  std::vector<std::uint32_t> places_;  // numbers from 1, 0 in a free place; a power of two of them
};

}  // namespace onu::xml::internal
