#include "xml/names.h"

#include <sys/auxv.h>

#include <cstring>

namespace onu::xml::internal {

std::size_t NameTable::find(std::string_view name) const {
  // Of none, number 0 less 1 is kNone.
  return names_.empty() ? kNone : std::size_t{places_[placeOf({name, hashOf(name)})]} - 1;
}

std::size_t NameTable::add(std::string_view name) {
  if (2 * names_.size() >= places_.size()) {
    grow(4 * names_.size() + 1);
  }
  const Name added = {name, hashOf(name)};
  std::uint32_t& place = places_[placeOf(added)];
  if (place == 0) {
    names_.push_back(added);
    place = static_cast<std::uint32_t>(names_.size());
  }
  return place - 1;
}

void NameTable::clear() {
  names_.clear();
  places_.clear();
}

// The whole product is kept. What a difference between two names becomes in it depends on the keys,
// so no file can be made to cancel it with a later one.
std::uint64_t NameTable::mix(std::uint64_t state) const {
  const std::uint32_t low = static_cast<std::uint32_t>(state) ^ keys_[0];
  const std::uint32_t high = static_cast<std::uint32_t>(state >> 32) ^ keys_[1];
  return std::uint64_t{low} * high;
}

std::uint32_t NameTable::hashOf(std::string_view name) const {
  std::uint64_t state = mix(name.size());
  const char* p = name.data();
  std::uint64_t word = 0;
  std::size_t left = name.size();
  for (; left >= sizeof(word); left -= sizeof(word), p += sizeof(word)) {
    std::memcpy(&word, p, sizeof(word));
    state = mix(state ^ word);
  }
  for (word = 0; left != 0; --left) {
    word = word << 8 | static_cast<unsigned char>(*p++);
  }
  state = mix(state ^ word);
  return static_cast<std::uint32_t>(state ^ state >> 32);
}

// The place of a name, or the free one where it belongs.
std::size_t NameTable::placeOf(const Name& name) const {
  for (std::size_t i = name.hash;; ++i) {
    i &= places_.size() - 1;
    const std::uint32_t number = places_[i];
    if (number == 0 ||
        (names_[number - 1].hash == name.hash && names_[number - 1].text == name.text)) {
      return i;
    }
  }
}

// So many places, or more to make it a power of two.
void NameTable::grow(std::size_t places) {
  if (places_.empty()) {
    // The keys are the kernel's random bytes for this process.
    // NOLINTNEXTLINE(performance-no-int-to-ptr): this entry of the auxiliary vector is an address
    const auto* const random = reinterpret_cast<const char*>(getauxval(AT_RANDOM));
    if (random != nullptr) {
      std::memcpy(keys_, random + sizeof(keys_), sizeof(keys_));
    }
  }
  std::size_t power = 16;
  while (power < places) {
    power *= 2;
  }
  places_.assign(power, 0);
  for (std::size_t i = 0; i != names_.size(); ++i) {
    places_[placeOf(names_[i])] = static_cast<std::uint32_t>(i + 1);
  }
}

}  // namespace onu::xml::internal
