#include "xml/entities.h"

#include "xml/scan.h"

namespace onu::xml::internal {

const Entity* EntityTable::find(std::string_view name) const {
  const std::size_t i = places_.find(name);
  return i == NameTable::kNone ? nullptr : &entities_[i];
}

bool EntityTable::add(const Entity& entity) {
  if (places_.add(entity.name) != entities_.size()) {
    return false;
  }
  entities_.push_back(entity);
  cost_ += entity.name.size() + entity.value.size();
  return true;
}

// A circle stays one with more declarations, so the first that closes one is found by halving.
const Entity* EntityTable::firstCircular(bool now) {
  const std::size_t count = entities_.size();
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
  std::size_t without = checked_;
  std::size_t with = count;
  while (with - without > 1) {
    const std::size_t middle = without + (with - without) / 2;
    (hasCircle(middle) ? with : without) = middle;
  }
  return &entities_[with - 1];
}

bool EntityTable::refersToItself(std::size_t entity) const {
  std::size_t position = 0;
  std::size_t next = 0;
  do {
    next = nextReference(entities_[entity], &position);
  } while (next != NameTable::kNone && next != entity);
  return next == entity;
}

// Depth first over the first `count` entities, with a stack of its own: chains may be long.
bool EntityTable::hasCircle(std::size_t count) const {
  enum class State : unsigned char { kNew, kOpen, kDone };
  struct Visit {
    std::size_t entity;
    std::size_t position;
  };
  std::vector<State> states(count, State::kNew);
  std::vector<Visit> path;
  for (std::size_t i = 0; i < count; ++i) {
    if (states[i] == State::kNew) {
      path.push_back({i, 0});
    }
    while (!path.empty()) {
      Visit& visit = path.back();
      states[visit.entity] = State::kOpen;
      const std::size_t next = nextReference(entities_[visit.entity], &visit.position);
      if (next == NameTable::kNone) {
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

// The next known entity that a value refers to from `position` on, or NameTable::kNone.
std::size_t EntityTable::nextReference(const Entity& from, std::size_t* position) const {
  const char* const e = from.value.data() + from.value.size();
  for (const char* p = from.value.data() + *position; p != e; ++p) {
    const std::size_t length = *p == sign_ ? referenceLength(p, e) : 0;
    const std::size_t found = length == 0 ? NameTable::kNone : places_.find({p + 1, length - 1});
    if (found != NameTable::kNone) {
      *position = static_cast<std::size_t>(p - from.value.data()) + length;
      return found;
    }
  }
  *position = from.value.size();
  return NameTable::kNone;
}

std::size_t referenceLength(const char* p, const char* e) {
  const char sign = *p;
  for (const char* end = p + 1; end != e; ++end) {
    if (*end == ';') {
      return static_cast<std::size_t>(end - p) + 1;
    }
    if (*end == sign || *end == '\0' || isSpace(*end)) {
      return 0;
    }
  }
  return 0;
}

}  // namespace onu::xml::internal
