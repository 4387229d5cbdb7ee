// Numbers found by name within a scope, for tables that may grow long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace xml::internal {

// A scope is any address that tells tables sharing the index apart. Names are not copied and must
// outlive the index. Constant time whatever the names are: they are hashed with keys that nobody
// outside the process knows.
class NameIndex {
 public:
  static constexpr size_t kNone = static_cast<size_t>(-1);

  // The value of a name, or kNone.
  size_t find(const void* scope, const char* name, size_t length) const;

  // Adds a name that is not there yet.
  void add(const void* scope, const char* name, size_t length, size_t value);

  // Takes the `count` names out again that were added last.
  void removeLast(size_t count);

 private:
  struct Entry {
    const void* scope;
    const char* name;
    size_t length;
    size_t value;
  };
  // Few bytes, so that looking for a name that is not there touches little memory.
  struct Place {
    uint32_t hash;
    uint32_t entry;  // its number from 1; 0 in a free place
  };
  uint64_t mix(uint64_t state) const;
  uint32_t hashOf(const void* scope, const char* name, size_t length) const;
  void place(Place place);
  void grow();
  void start();

  uint32_t keys_[2] = {0x9E3779B9, 0x7F4A7C15};
  std::vector<Entry> entries_;
  std::vector<Place> places_;  // open addressing; a power of two, at most half full
};

}  // namespace xml::internal
