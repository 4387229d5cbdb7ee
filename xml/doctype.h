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
  Doctype(RootImpl& root, Decoder& decoder) : root_(root), decoder_(decoder) {
    decoder_.setEntities(&entities_);
  }

  // End of the internal subset that starts at p, behind its '[': the place of the ']' that only
  // white space parts from a '>'. nullptr when there is none.
  const char* subsetEnd(const char* p, const char* e);

  // Reads the text between the brackets, which is left as it is. Whatever was declared before an
  // error holds.
  DoctypeError read(std::string_view subset);

  // The number of the element's list of defaults, for attributeMode: looked up once for a tag,
  // since the name may be as long as the input. NameTable::kNone without a list.
  std::size_t listOf(std::string_view element) const { return elements_.find(element); }
  // How an attribute of the element with that list is to be decoded.
  Mode attributeMode(std::size_t list, std::string_view name) const;

  // Puts what was declared into the document's tables.
  void publish() const;

 private:
  // These give the message of an error, or nullptr.
  const char* declaration(SubsetSource& source);
  const char* entity(SubsetSource& source);
  const char* attributeList(SubsetSource& source);

  std::size_t listFor(std::string_view element);
  void addDefault(std::size_t list, Token name, Token value, Mode mode);
  std::string_view decodedCopy(Token value, Mode mode);

  RootImpl& root_;
  Decoder& decoder_;
  Entities entities_;
  NameTable elements_;                // that have defaults
  NameTable attributes_;              // of all of them: the bytes of the list's number and the name
  std::vector<ListedText> defaults_;  // three texts for each of the attributes
  std::string_view circular_;         // the entity found in a circle
  bool isWellFormed_ = true;          // quotes and comments say where a subset does not end
};

}  // namespace onu::xml::internal
