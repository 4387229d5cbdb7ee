// The document type's internal subset: entities and attribute defaults.
#pragma once

#include <vector>

#include "xml/decode.h"
#include "xml/memory.h"
#include "xml/subset_source.h"

namespace xml::internal {

// What went wrong in a subset: where in the input, and the message with its argument.
struct DoctypeError {
  const char* place = nullptr;
  const char* message = nullptr;  // NULL when nothing did
  const char* argument = "";
};

// The declarations of one document, of all its document types; its arena keeps their texts. Made
// when the first internal subset is met.
class Doctype {
 public:
  Doctype(RootImpl& root, Decoder& decoder) : root_(root), decoder_(decoder) {}

  // End of the internal subset that starts at p, behind its '[': the place of the ']' that only
  // white space parts from a '>'. NULL when there is none.
  const char* subsetEnd(const char* p, const char* e);

  // Reads the text between the brackets, [subset, subset + length) of the input, which is left as
  // it is. Whatever was declared before an error holds.
  DoctypeError read(const char* subset, size_t length);

  // Puts what was declared into the document's tables.
  void publish() const;

  // How the attribute is to be decoded.
  Mode attributeMode(const char* element, size_t elementLength, const char* name,
                     size_t length) const;

  Entities& entities() { return entities_; }

 private:
  struct Default {
    const char* name;
    const char* value;
    Mode mode;
    size_t order;  // how many declarations of entities stood before it
  };
  struct ElementDefaults {
    const char* element;
    std::vector<Default> attributes;
  };

  bool declarations(SubsetSource& source);
  bool declaration(SubsetSource& source);
  bool entity(SubsetSource& source);
  bool isPredefined(const char* key) const;
  bool attributeList(SubsetSource& source);
  bool attributeType(SubsetSource& source, Mode* mode);
  bool defaultValue(SubsetSource& source, Token element, Token name, Mode mode);
  void addDefault(Token element, Token name, Token value, Mode mode);
  bool fail(const char* place, const char* message, const char* argument = "");
  bool isFreeOfCircles(bool now);
  const char** publish(const ElementDefaults& defaults) const;

  RootImpl& root_;
  Decoder& decoder_;
  Entities entities_;
  std::vector<ElementDefaults> defaults_;
  NameIndex index_;  // of elements (scope: this) and their attributes (scope: the element's name)
  DoctypeError error_;
  size_t declared_ = 0;                    // entities so far
  size_t held_ = static_cast<size_t>(-1);  // what stands behind so many of them does not hold
  bool isWellFormed_ = true;               // quotes and comments say where a subset does not end
};

}  // namespace xml::internal
