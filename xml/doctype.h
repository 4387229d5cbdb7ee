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

// The declarations of one document, whose arena keeps their texts. Made when its first internal
// subset is met.
class Doctype {
 public:
  Doctype(RootImpl& root, Decoder& decoder) : root_(root), decoder_(decoder) {}

  // Reads the text between the brackets, [subset, subset + length) of the input, which is left as
  // it is. Whatever was declared before an error holds.
  DoctypeError read(const char* subset, size_t length);

  // How the attribute is to be decoded.
  Mode attributeMode(const char* element, size_t elementLength, const char* name,
                     size_t length) const;

  Entities& entities() { return entities_; }

 private:
  struct Default {
    const char* name;
    const char* value;
    Mode mode;
  };
  struct ElementDefaults {
    const char* element;
    std::vector<Default> attributes;
  };

  bool declarations(SubsetSource& source);
  bool declaration(SubsetSource& source);
  void entity(SubsetSource& source);
  bool isPredefined(const char* key) const;
  bool attributeList(SubsetSource& source);
  bool attributeType(SubsetSource& source, Mode* mode);
  bool defaultValue(SubsetSource& source, Token element, Token name, Mode mode);
  void addDefault(Token element, Token name, Token value, Mode mode);
  bool fail(const char* place, const char* message, const char* argument = "");
  void checkCircles();
  void publish();

  RootImpl& root_;
  Decoder& decoder_;
  Entities entities_;
  std::vector<ElementDefaults> defaults_;
  NameIndex index_;  // of elements (scope: this) and their attributes (scope: the element's name)
  DoctypeError error_;
};

// End of a document type's internal subset that starts at p, behind its '[': the place of the ']'
// that only white space parts from a '>'. NULL when there is none.
const char* subsetEnd(const char* p, const char* e);
// The same for a subset that is not read, whatever quotes and comments say.
const char* plainSubsetEnd(const char* p, const char* e);

}  // namespace xml::internal
