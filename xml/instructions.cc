#include "xml/instructions.h"

#include <algorithm>

namespace xml::internal {

void Instructions::add(const char* target, size_t targetLength, const char* text, bool beforeRoot) {
  size_t i = index_.find(nullptr, target, targetLength);
  if (i == NameIndex::kNone) {
    i = lists_.size();
    index_.add(nullptr, target, targetLength, i);
    lists_.push_back({target, {}, {}});
  }
  lists_[i].texts.push_back(text);
  lists_[i].sides += beforeRoot ? '<' : '>';
}

void Instructions::publish(RootImpl& root) const {
  if (lists_.empty()) return;
  const char*** lists = root.arena.array<const char**>(lists_.size() + 1);
  root.pi = lists;
  for (const List& list : lists_) {
    const char** text = root.arena.array<const char*>(list.texts.size() + 3);
    *lists++ = text;
    *text++ = list.target;
    text = std::copy(list.texts.begin(), list.texts.end(), text);
    *text++ = nullptr;
    *text = root.arena.copy(list.sides.data(), list.sides.size());
  }
  *lists = nullptr;
}

}  // namespace xml::internal
