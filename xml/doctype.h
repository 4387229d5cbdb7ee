// The document types' internal subsets: entities and attribute defaults.
#pragma once

#include <vector>

#include "xml/decode.h"
#include "xml/memory.h"
#include "xml/subset_source.h"

namespace onu::xml::internal {

// What went wrong in a subset: where in the input, and the message with its argument.
struct DoctypeError {
  const char* place = nullptr;
  const char* message = nullptr;  // nullptr when nothing did
  std::string_view argument;
};

// The declarations of one document, of all its document types; its arena keeps their texts. Made
// when the first internal subset is met.
class Doctype {
 public:
  Doctype(RootImpl& root, Decoder& decoder);

  // End of the internal subset that starts at p, behind its '[': the place of the ']' that only
  // white space parts from a '>'. nullptr when there is none.
  const char* subsetEnd(const char* p, const char* e);

  // Reads the text between the brackets, which is left as it is. Whatever was declared before an
  // error holds.
  DoctypeError read(std::string_view subset);

  // The number of the element's list of defaults, for attributeMode: looked up once for a tag,
  // since the name may be as long as the input. NameTable::kNone without a list.
  std::size_t listOf(std::string_view element) const { return places_.find(element); }
  // How an attribute of the element with that list is to be decoded.
  Mode attributeMode(std::size_t list, std::string_view name) const;

  // Puts what was declared into the document's tables.
  void publish() const;

 private:
  struct Default {
    const char* name;
    const char* value;
    Mode mode;
  };
  struct ElementDefaults {
    const char* element;
    std::vector<Default> attributes;
    NameTable places;  // in attributes
  };

  bool declarations(SubsetSource& source);
  bool declaration(SubsetSource& source);
  bool entity(SubsetSource& source);
  bool isPredefined(std::string_view key) const;
  bool attributeList(SubsetSource& source);
  bool attributeType(SubsetSource& source, Mode* mode);
  bool defaultValue(SubsetSource& source, std::size_t* list, Token element, Token name, Mode mode);
  // `list` becomes the number of the element's list with its first default.
  void addDefault(std::size_t* list, Token element, Token name, Token value, Mode mode);
  std::string_view decodedCopy(Token value, Mode mode);
  bool fail(const char* place, const char* message, std::string_view argument = {});

  RootImpl& root_;
  Decoder& decoder_;
  Entities entities_;
  std::vector<ElementDefaults> defaults_;
  NameTable places_;  // of elements in defaults_
  DoctypeError error_;
  bool isWellFormed_ = true;  // quotes and comments say where a subset does not end
};

}  // namespace onu::xml::internal
