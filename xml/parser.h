// The parser: cuts the input into markup and character data and builds the tree from it.
#pragma once

#include <memory>
#include <string>

#include "xml/doctype.h"
#include "xml/scan.h"

namespace onu::xml::internal {

// One parse of the data [root.s, root.e), which ends early at a NUL byte. Its last byte is put
// aside and a NUL stands in its place, so that every scan ends there without looking where it is.
// Costs do not depend on how many children, names or text pieces an element has.
//
// What takes a place in the data and returns one goes from there to the next markup, whose '<' may
// be overwritten already, or to nullptr when parsing ends, after an error or at the end of the
// data.
class Parser {
 public:
  explicit Parser(RootImpl& root);

  void run();

 private:
  static constexpr const char* kOutside = "markup outside of root element";
  static constexpr const char* kUnexpected = "unexpected <";
  static constexpr std::size_t kNoPieces = static_cast<std::size_t>(-1);
  static constexpr std::size_t kStep = 16;  // bytes that short pieces are copied in
  // Children of up to so many names are grouped as they come.
  static constexpr std::size_t kFewGroups = 16;

  // An element whose end tag is still to come.
  struct Open {
    XmlNode* node;
    std::size_t nameLength;
    std::size_t textLength = 0;
    std::size_t pieces = kNoPieces;  // where in pieces_ its text starts that is not in one place
    Node* lastChild = nullptr;
    XmlNode* lastGroup = nullptr;  // first child of the newest name
    std::size_t groups = 0;        // names of its children, no more than one above kFewGroups
    std::uint32_t seen = 0;        // a bit for each of them, not necessarily its own
  };
  struct Pair {
    const char* name;
    const char* value;
  };

  bool failed() const { return root_.err[0] != '\0'; }
  bool hasRoot() const { return root_.xml.name != nullptr; }
  void hideLast() { *last_ = '\0'; }
  void showLast() { *last_ = lastByte_; }
  // The byte at a place, the last included; NUL at the end.
  char peek(const char* p) const { return p < last_ ? *p : p == last_ ? lastByte_ : '\0'; }
  char* find(char* p, char wanted) const;
  char* skipSpaces(char* p) const;
  char* closing(char* text, std::string_view mark) const;

  // elements.cc: what most of the input is made of, together for speed
  void end();
  char* startTag(char* p);
  char attributes(char* p, std::string_view element);
  char* plainAttributes(char* p);
  char oddAttribute();
  const char* attributeValue(const char* name);
  const char** attributeArray();
  char* endTag(char* p);
  char* behindEndTag(char* p, const char* name, std::size_t length) const;
  char* content(char* p);
  char* oddContent(char* text, char* odd);
  Decoded decode(char* text, char* odd, std::size_t length, Mode mode);
  void appendText(char* text, std::size_t length);
  void appendPiece(const char* text, std::size_t length);
  void terminate(char* end);
  XmlNode* add(char* name, std::size_t length, const char** attributes);
  void link(Node* node, std::size_t length);
  void open(XmlNode* node, std::size_t nameLength);
  void close();

  // parse.cc: the rest, for size; other markup returns the place behind it
  char* otherMarkup(char* p);
  char* behindOddEndTag(char* p);
  char* outsideContent(char* text);
  char* markupAt(char* p);
  char* declaration(char* p);
  char* characterData(char* p);
  char* documentType(char* p);
  char* internalSubset(char* p, char* start);
  char* instruction(char* p);
  void publishInstructions();
  // The message goes on with the argument and what is behind it. Always nullptr.
  char* fail(const char* place, std::string_view message, std::string_view argument = {},
             std::string_view behind = {});

  RootImpl& root_;
  char* e_;
  char* last_;
  char lastByte_ = '\0';
  const char* stop_;              // where the data ended
  std::ptrdiff_t lostLines_ = 0;  // line feeds that decoding has overwritten so far
  std::vector<Open> opens_;
  Open* top_ = nullptr;       // the innermost of them
  std::vector<char> pieces_;  // of their texts, the innermost one's on top
  char* piecesEnd_ = nullptr;
  char* piecesLimit_ = nullptr;          // kStep bytes can be written here yet
  char* p_ = nullptr;                    // in a tag: where what is not of the usual form goes on
  std::size_t list_ = NameTable::kNone;  // declared defaults of its element
  std::vector<Pair> pairs_;              // attributes of that tag
  Decoder decoder_;
  std::unique_ptr<Doctype> doctype_;
  std::vector<ListedText> instructions_;
  NameTable targets_;  // of them
};

// Ends a name, whose place may hold a line feed that counts for the lines of later errors.
inline void Parser::terminate(char* end) {
  if (*end == '\n') {
    ++lostLines_;
  }
  *end = '\0';
}

// Appends character data, which lies in the input, to the open element.
inline void Parser::appendText(char* text, std::size_t length) {
  if (length == 0) {
    return;
  }
  const bool isShort = length <= kStep && static_cast<std::size_t>(last_ - text) > kStep;
  if (isShort && top_->pieces != kNoPieces && piecesLimit_ > piecesEnd_) {
    std::memcpy(piecesEnd_, text, kStep);
    piecesEnd_ += length;
    top_->textLength += length;
    return;
  }
  if (top_->textLength != 0) {
    appendPiece(text, length);
    return;
  }
  text[length] = '\0';
  top_->node->txt = text;
  top_->textLength = length;
}

}  // namespace onu::xml::internal
