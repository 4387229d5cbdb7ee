#include "xml/name_index.h"

#include <sys/auxv.h>

#include <cstring>

namespace xml::internal {

size_t NameIndex::find(const void* scope, const char* name, size_t length) const {
  if (entries_.empty()) return kNone;
  uint32_t hash = hashOf(scope, name, length);
  for (size_t i = hash;; ++i) {
    Place place = places_[i & (places_.size() - 1)];
    if (place.entry == 0) return kNone;
    if (place.hash != hash) continue;
    const Entry& entry = entries_[place.entry - 1];
    if (entry.scope == scope && entry.length == length &&
        std::memcmp(entry.name, name, length) == 0) {
      return entry.value;
    }
  }
}

void NameIndex::add(const void* scope, const char* name, size_t length, size_t value) {
  if (2 * entries_.size() == places_.size()) grow();
  entries_.push_back({scope, name, length, value});
  place({hashOf(scope, name, length), static_cast<uint32_t>(entries_.size())});
}

// A place freed this way cuts nothing off: what was added before never had to step over it.
void NameIndex::removeLast(size_t count) {
  for (; count != 0; --count) {
    const Entry& entry = entries_.back();
    size_t i = hashOf(entry.scope, entry.name, entry.length);
    while (places_[i & (places_.size() - 1)].entry != entries_.size()) ++i;
    places_[i & (places_.size() - 1)] = {};
    entries_.pop_back();
  }
}

// The whole product is kept. What a difference between two names becomes in it depends on the keys,
// so no file can be made to cancel it with a later one.
uint64_t NameIndex::mix(uint64_t state) const {
  uint32_t low = static_cast<uint32_t>(state) ^ keys_[0];
  uint32_t high = static_cast<uint32_t>(state >> 32) ^ keys_[1];
  return uint64_t{low} * high;
}

uint32_t NameIndex::hashOf(const void* scope, const char* name, size_t length) const {
  uint64_t state = mix(mix(reinterpret_cast<uintptr_t>(scope)) ^ length);
  while (length != 0) {
    uint64_t word = 0;
    size_t step = length < sizeof(word) ? length : sizeof(word);
    std::memcpy(&word, name, step);
    state = mix(state ^ word);
    name += step;
    length -= step;
  }
  state = mix(state);
  return static_cast<uint32_t>(state ^ state >> 32);
}

void NameIndex::place(Place place) {
  size_t i = place.hash;
  while (places_[i & (places_.size() - 1)].entry != 0) ++i;
  places_[i & (places_.size() - 1)] = place;
}

// Places the names in the order they were added, which removeLast relies on.
void NameIndex::grow() {
  if (places_.empty()) {
    start();
    return;
  }
  std::vector<Place> ordered(entries_.size());
  for (Place each : places_) {
    if (each.entry != 0) ordered[each.entry - 1] = each;
  }
  places_.assign(4 * places_.size(), {});
  for (Place each : ordered) place(each);
}

// The keys are the kernel's random bytes for this process.
void NameIndex::start() {
  constexpr size_t kFirstPlaces = 64;
  places_.resize(kFirstPlaces);
  entries_.reserve(kFirstPlaces / 2);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this entry of the auxiliary vector is an address
  auto* random = reinterpret_cast<const char*>(getauxval(AT_RANDOM));
  if (random != nullptr) std::memcpy(keys_, random + sizeof(keys_), sizeof(keys_));
}

}  // namespace xml::internal
