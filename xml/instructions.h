// A document's processing instructions.
#pragma once

#include <string>
#include <vector>

#include "xml/memory.h"
#include "xml/name_index.h"

namespace xml::internal {

// Collects instructions by target and puts them into the document's table. Texts are not copied.
class Instructions {
 public:
  // `target` and `text` are followed by a NUL.
  void add(const char* target, size_t targetLength, const char* text, bool beforeRoot);
  void publish(RootImpl& root) const;

 private:
  struct List {
    const char* target;
    std::vector<const char*> texts;
    std::string sides;
  };

  std::vector<List> lists_;
  NameIndex index_;
};

}  // namespace xml::internal
