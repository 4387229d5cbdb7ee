// The parser: cuts the input into markup and character data and feeds the tree builder.
#pragma once

#include <memory>

#include "xml/decode.h"
#include "xml/doctype.h"
#include "xml/instructions.h"
#include "xml/scan.h"
#include "xml/tree_builder.h"

namespace xml::internal {

// One parse of the data [root.s, root.e), which ends early at a NUL byte. Every step returns false
// when parsing ends, after an error or at the end of the data.
class Parser {
 public:
  explicit Parser(RootImpl& root) : root_(root), p_(root.s), e_(root.e), builder_(root, root.e) {}

  void run();

 private:
  static constexpr const char* kOutside = "markup outside of root element";

  // parse.cc
  void end();
  bool decodedContent(char* text, char* stop);
  bool outsideContent(char* text, char* stop);
  bool declaration();
  bool comment();
  bool characterData();
  bool documentType();
  bool internalSubset(char* start);
  bool instruction();
  Decoded decode(char* text, size_t length, Mode mode);
  // The argument stands in for the "%s" of the message.
  bool fail(const char* place, std::string_view message, std::string_view argument = {});

  // tag.cc: what most of the input is made of, together for speed
  struct TagEnd {
    char* place;     // NULL after an error
    char character;  // what stood there: '/', '>', or NUL at the end of the data
  };
  bool markup();
  bool content(char* text, char* stop);
  bool startTag();
  bool startContent(XmlNode* node, char* nameEnd, char* text, char* stop);
  bool endTag();
  char* endOfName(char* p, bool isAttribute);
  char* nameAndStop(char* name, char** stop);
  char* plainAttributes(char* p);
  TagEnd attributes(char* p, const char* element, size_t elementLength);
  char* attributeValue(char* quote, const char* element, size_t elementLength);
  const char** attributeArray();
  void terminate(char* end);

  char peek(const char* p) const { return p == e_ ? '\0' : *p; }
  bool goesOn(const char* p, const char* text, size_t length) const {
    return startsWith(p, e_, text, length);
  }

  RootImpl& root_;
  char* p_;  // the '<' of the next markup, which may be overwritten already
  char* e_;
  bool failed_ = false;
  ptrdiff_t lostLines_ = 0;  // line feeds before p_ that decoding has overwritten
  TreeBuilder builder_;
  Decoder decoder_;
  GrowStack<const char*, 64> pairs_;  // attributes of the tag being read
  std::unique_ptr<Doctype> doctype_;
  std::unique_ptr<Instructions> instructions_;
};

}  // namespace xml::internal
