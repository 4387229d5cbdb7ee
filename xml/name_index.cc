#include "xml/name_index.h"

#include <cstring>

namespace xml::internal {

namespace {

constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;

uint64_t mix(uint64_t state, uint64_t word) {
  state = (state ^ word) * kMultiplier;
  return state ^ (state >> 32);
}

}  // namespace

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
  entries_.push_back({scope, name, length, value});
  if (2 * entries_.size() > places_.size()) grow();
  place({hashOf(scope, name, length), static_cast<uint32_t>(entries_.size())});
}

// Seeded with an address, which differs between runs: a file cannot be made to fit it.
uint32_t NameIndex::hashOf(const void* scope, const char* name, size_t length) const {
  uint64_t state = mix(reinterpret_cast<uintptr_t>(scope), reinterpret_cast<uintptr_t>(this));
  state = mix(state, length);
  while (length != 0) {
    uint64_t word = 0;
    size_t step = length < sizeof(word) ? length : sizeof(word);
    std::memcpy(&word, name, step);
    state = mix(state, word);
    name += step;
    length -= step;
  }
  return static_cast<uint32_t>(mix(state, 0));
}

void NameIndex::place(Place place) {
  size_t i = place.hash;
  while (places_[i & (places_.size() - 1)].entry != 0) ++i;
  places_[i & (places_.size() - 1)] = place;
}

void NameIndex::grow() {
  std::vector<Place> old(places_.empty() ? 64 : 4 * places_.size());
  old.swap(places_);
  for (Place each : old) {
    if (each.entry != 0) place(each);
  }
}

}  // namespace xml::internal
