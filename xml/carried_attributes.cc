#include "xml/carried_attributes.h"

namespace xml::internal {

void CarriedAttributes::begin(const XmlNode& node) {
  node_ = &node;
  count_ = 0;
  while (node.attr[2 * count_] != nullptr) ++count_;
  if (count_ > kMostCompared) index_ = NameIndex();
}

bool CarriedAttributes::isIndexed(size_t i) {
  const char* name = node_->attr[2 * i];
  size_t length = std::strlen(name);
  if (index_.find(node_, name, length) != NameIndex::kNone) return true;
  index_.add(node_, name, length, i);
  return false;
}

bool CarriedAttributes::has(const char* name) const {
  if (count_ <= kMostCompared) return hasBefore(count_, name);
  return index_.find(node_, name, std::strlen(name)) != NameIndex::kNone;
}

}  // namespace xml::internal
