// Which attributes an element carries already, while it is written.
#pragma once

#include <cstring>

#include "xml/name_index.h"
#include "xml/xml.h"

namespace xml::internal {

// Few names are compared, many are indexed.
class CarriedAttributes {
 public:
  // Begins with an element's attributes.
  void begin(const XmlNode& node);

  // Whether the i-th attribute repeats an earlier one. To be asked once for each, in order.
  bool repeats(size_t i) {
    return count_ <= kMostCompared ? hasBefore(i, node_->attr[2 * i]) : isIndexed(i);
  }
  // Whether the element carries the name. To be asked after that.
  bool has(const char* name) const;

 private:
  static constexpr size_t kMostCompared = 8;
  bool hasBefore(size_t end, const char* name) const {
    for (size_t i = 0; i != end; ++i) {
      const char* other = node_->attr[2 * i];
      if (other[0] == name[0] && std::strcmp(other, name) == 0) return true;
    }
    return false;
  }
  bool isIndexed(size_t i);

  const XmlNode* node_ = nullptr;
  size_t count_ = 0;
  NameIndex index_;  // of this element's attributes
};

}  // namespace xml::internal
