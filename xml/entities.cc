#include "xml/entities.h"

#include "xml/scan.h"

namespace xml::internal {

const Entity* EntityTable::find(const char* name, size_t nameLength) const {
  size_t i = index_.find(nullptr, name, nameLength);
  return i == NameIndex::kNone ? nullptr : &entities_[i];
}

bool EntityTable::add(const Entity& entity) {
  if (find(entity.name, entity.nameLength) != nullptr) return false;
  index_.add(nullptr, entity.name, entity.nameLength, entities_.size());
  entities_.push_back(entity);
  cost_ += entity.nameLength + entity.valueLength;
  return true;
}

// A circle stays one with more declarations, so the first that closes one is found by halving.
const Entity* EntityTable::firstCircular(bool now) {
  const size_t count = entities_.size();
  if (count == checked_) {
    return nullptr;
  }
  if (!now && cost_ < 2 * checkedCost_ && !refersToItself(count - 1)) {
    return nullptr;
  }
  checkedCost_ = cost_;
  if (!hasCircle(count)) {
    checked_ = count;
    return nullptr;
  }
  size_t without = checked_;
  size_t with = count;
  while (with - without > 1) {
    size_t middle = without + (with - without) / 2;
    (hasCircle(middle) ? with : without) = middle;
  }
  return &entities_[with - 1];
}

bool EntityTable::refersToItself(size_t entity) const {
  size_t position = 0;
  size_t next = 0;
  do {
    next = nextReference(entities_[entity], &position);
  } while (next != NameIndex::kNone && next != entity);
  return next == entity;
}

// Depth first over the first `count` entities, with a stack of its own: chains may be long.
bool EntityTable::hasCircle(size_t count) const {
  enum class State : unsigned char { kNew, kOpen, kDone };
  struct Visit {
    size_t entity;
    size_t position;
  };
  std::vector<State> states(count, State::kNew);
  std::vector<Visit> path;
  for (size_t i = 0; i < count; ++i) {
    if (states[i] == State::kNew) path.push_back({i, 0});
    while (!path.empty()) {
      Visit& visit = path.back();
      states[visit.entity] = State::kOpen;
      size_t next = nextReference(entities_[visit.entity], &visit.position);
      if (next == NameIndex::kNone) {
        states[visit.entity] = State::kDone;
        path.pop_back();
      } else if (next < count && states[next] == State::kOpen) {
        return true;
      } else if (next < count && states[next] == State::kNew) {
        path.push_back({next, 0});
      }
    }
  }
  return false;
}

// The next known entity that a value refers to from `position` on, or kNone.
size_t EntityTable::nextReference(const Entity& from, size_t* position) const {
  const char* e = from.value + from.valueLength;
  for (const char* p = from.value + *position; p != e; ++p) {
    if (*p != sign_) continue;
    size_t length = referenceLength(p, e);
    size_t found = length == 0 ? NameIndex::kNone : index_.find(nullptr, p + 1, length - 1);
    if (found == NameIndex::kNone) continue;
    *position = static_cast<size_t>(p - from.value) + length;
    return found;
  }
  *position = from.valueLength;
  return NameIndex::kNone;
}

size_t referenceLength(const char* p, const char* e) {
  char sign = *p;
  for (const char* end = p + 1; end != e; ++end) {
    if (*end == ';') return static_cast<size_t>(end - p) + 1;
    if (*end == sign || *end == '\0' || isSpace(*end)) return 0;
  }
  return 0;
}

}  // namespace xml::internal
