#include "xml/entities.h"

#include <utility>

namespace onu::xml::internal {

const Entity* EntityTable::find(std::string_view name) const {
  const std::size_t i = places_.find(name);
  return i == NameTable::kNone ? nullptr : &entities_[i];
}

bool EntityTable::add(std::string_view name, std::string_view value) {
  const bool isNew = places_.add(name) == entities_.size();
  if (isNew) {
    entities_.push_back({name, value, NameTable::kNone});
  }
  return isNew;
}

// One that nobody referred to before cannot be in a circle but with itself.
bool EntityTable::isNewestCircular() {
  constexpr std::size_t kLooksPerByte = 64;
  const std::size_t newest = entities_.size() - 1;
  const bool isAwaited = awaited_.find(entities_[newest].name) != NameTable::kNone;
  looks_ += kLooksPerByte * (entities_[newest].name.size() + entities_[newest].value.size());
  std::vector<std::size_t> left = {newest};
  while (!left.empty() && entities_[left.back()].value.size() < looks_) {
    const std::string_view value = entities_[left.back()].value;
    const char* const e = value.data() + value.size();
    left.pop_back();
    looks_ -= value.size();
    for (const char* p = value.data(); p != e; ++p) {
      const std::size_t length = *p == sign_ ? referenceLength(p, e) : 0;
      if (length == 0) {
        continue;
      }
      const std::size_t found = places_.find({p + 1, length - 1});
      if (found == newest) {
        return true;
      }
      if (found == NameTable::kNone) {
        awaited_.add({p + 1, length - 1});
      } else if (isAwaited && std::exchange(entities_[found].seenFor, newest) != newest) {
        left.push_back(found);
      }
    }
  }
  return false;
}

std::size_t referenceLength(const char* p, const char* e) {
  const char sign = *p;
  for (const char* end = p + 1; end != e; ++end) {
    if (*end == ';') {
      return static_cast<std::size_t>(end - p) + 1;
    }
    if (*end == sign) {
      return 0;
    }
  }
  return 0;
}

}  // namespace onu::xml::internal
