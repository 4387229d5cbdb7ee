// Start tags, their attributes, end tags, the plain text between them, and the tree made of them.
#include <algorithm>
#include <utility>

#include "xml/parser.h"

namespace onu::xml::internal {

namespace {

inline void appendSame(Node* first, Node* node) {
  node->beforeSame = std::exchange(first->beforeSame, node);
  node->beforeSame->next = node;
}

// The first of a list of groups whose name is the `length` bytes at `name`, which stand behind all
// of theirs in the input, so that as many can be read there.
inline Node* findGroup(XmlNode* first, const char* name, std::size_t length) {
  while (first != nullptr &&
         (first->name[length] != '\0' || !sameBytes(first->name, name, length))) {
    first = first->sibling;
  }
  return static_cast<Node*>(first);
}

// Groups the children of many names again, with a table. What those at the front are linked with
// already is right.
void regroup(XmlNode* parent) {
  std::size_t children = 0;
  for (const XmlNode* node = parent->child; node != nullptr; node = node->ordered) {
    ++children;
  }
  NameTable names;
  names.reserve(children);
  std::vector<Node*> firsts;
  firsts.reserve(children);
  for (XmlNode* child = parent->child; child != nullptr; child = child->ordered) {
    auto* const node = static_cast<Node*>(child);
    node->beforeSame = node;
    const std::size_t i = names.add(node->name);
    if (i != firsts.size()) {
      appendSame(firsts[i], node);
      continue;
    }
    if (i != 0) {
      firsts.back()->sibling = node;
    }
    firsts.push_back(node);
  }
}

}  // namespace

// Of no data, a byte of our own is the last.
Parser::Parser(RootImpl& root)
    : root_(root), e_(root.e), last_(root.s == root.e ? &lastByte_ : root.e - 1), stop_(root.e) {
  lastByte_ = *last_;
  hideLast();
  pairs_.reserve(16);
  opens_.reserve(8);
}

void Parser::run() {
  char* p = root_.s == e_ ? nullptr : outsideContent(root_.s);
  while (p != nullptr) {
    if (is(p[1], kNameStart)) {
      p = startTag(p);
    } else if (p[1] == '/') {
      p = endTag(p);
    } else {
      p = otherMarkup(p);
      p = p == nullptr ? nullptr : content(p);
    }
  }
  end();
}

void Parser::end() {
  if (!failed() && top_ != nullptr) {
    fail(stop_, "unclosed tag <", {top_->node->name, top_->nameLength}, ">");
  }
  if (!failed() && !hasRoot()) {
    fail(stop_, "root tag missing");
  }
  root_.cur = top_ == nullptr ? nullptr : top_->node;
  while (top_ != nullptr) {
    close();
  }
  if (!instructions_.empty()) {
    publishInstructions();
  }
  if (doctype_ != nullptr) {
    doctype_->publish();
  }
}

// Takes the character data at p. Data that no markup follows is no content.
inline char* Parser::content(char* p) {
  if (top_ == nullptr || p == e_) {
    return outsideContent(p);
  }
  char* const stop = skipTo(p, kContentStop);
  if (*stop != '<') {
    return oddContent(p, stop);
  }
  appendText(p, static_cast<std::size_t>(stop - p));
  return stop;
}

// The first byte wanted at or after p, or the end of the data.
char* Parser::find(char* p, char wanted) const {
  if (p == e_) {
    return p;
  }
  p = strchrnul(p, wanted);
  return p == last_ && lastByte_ != wanted && lastByte_ != '\0' ? e_ : p;
}

char* Parser::skipSpaces(char* p) const {
  while (isSpace(peek(p))) {
    ++p;
  }
  return p;
}

// Character data of the open element, where bytes from `odd` on have to be decoded.
char* Parser::oddContent(char* text, char* odd) {
  char* const stop = find(odd, '<');
  if (peek(stop) == '\0') {
    return markupAt(stop);
  }
  const auto length = static_cast<std::size_t>(stop - text);
  const Decoded decoded = decode(text, odd, length, Mode::kContent);
  if (decoded.inPlace) {
    appendText(decoded.text, decoded.length);
  } else if (decoded.length != 0) {
    appendPiece(decoded.text, decoded.length);
  }
  return stop == last_ ? fail(stop, kUnexpected) : stop;
}

// Keeps the count of lines right, which decoding in place changes.
Decoded Parser::decode(char* text, char* odd, std::size_t length, Mode mode) {
  const std::ptrdiff_t lines = std::count(odd, text + length, '\n');
  const Decoded decoded = decoder_.decode(text, odd, length, mode);
  if (lines != 0 || decoder_.movesLines()) {
    lostLines_ += lines - std::count(odd, text + length, '\n');
  }
  return decoded;
}

// Most elements hold one text and nothing else; those never become the open element.
char* Parser::startTag(char* p) {
  if (top_ == nullptr && hasRoot()) {
    return fail(p, kOutside);
  }
  char* const name = p + 1;
  char* const nameEnd = skipTo(name, kTagNameEnd);
  const auto length = static_cast<std::size_t>(nameEnd - name);
  const char** array = noAttributes();
  char tagEnd = *nameEnd;
  p = nameEnd;
  if (tagEnd != '>') {
    tagEnd = attributes(p, {name, length});
    p = p_;
    if (p == nullptr) {
      return nullptr;
    }
    array = pairs_.empty() ? array : attributeArray();
  }
  const bool isEmpty = tagEnd == '/';
  if (isEmpty ? peek(p + 1) != '>' : tagEnd != '>') {
    return fail(p, "missing >");
  }
  XmlNode* const node = add(name, length, array);
  if (isEmpty) {
    terminate(nameEnd);
    return content(p + 2);
  }
  char* const text = p + 1;
  char* const stop = p < last_ ? skipTo(text, kContentStop) : last_;
  char* const behind = *stop == '<' ? behindEndTag(stop, name, length) : nullptr;
  terminate(nameEnd);
  if (behind != nullptr) {
    if (stop != text) {
      *stop = '\0';
      node->txt = text;
    }
    return content(behind);
  }
  open(node, length);
  if (*stop != '<') {
    return content(text);
  }
  appendText(text, static_cast<std::size_t>(stop - text));
  return stop;
}

// Collects the attributes from p on and leaves p_ where the tag ends. Returns what stands there,
// NUL at the end of the data. p_ is nullptr after an error.
char Parser::attributes(char* p, std::string_view element) {
  pairs_.clear();
  p_ = p;
  list_ = doctype_ == nullptr ? NameTable::kNone : doctype_->listOf(element);
  char c = *p_;
  while (c != '>' && c != '/') {
    p_ = doctype_ == nullptr ? plainAttributes(p_) : p_;
    c = *p_;
    if (c != '>' && c != '/') {
      c = oddAttribute();
      if (c == '\0') {
        break;
      }
    }
  }
  return c;
}

// Takes attributes of the usual form: a name and a value in double quotes that needs no decoding.
// Returns the place behind them.
inline char* Parser::plainAttributes(char* p) {
  for (;;) {
    char* name = p;
    while (isSpace(*name)) {
      ++name;
    }
    char* const nameEnd = skipTo(name, kAttributeNameEnd);
    if (*nameEnd != '=' || nameEnd[1] != '"') {
      return p;
    }
    char* const valueEnd = skipTo(nameEnd + 2, kValueStop);
    if (*valueEnd != '"') {
      return p;
    }
    *nameEnd = '\0';
    *valueEnd = '\0';
    pairs_.push_back({name, nameEnd + 2});
    p = valueEnd + 1;
  }
}

// Any form of an attribute at p_. One without a quoted value gets the empty one. Returns what
// stands at p_ then.
char Parser::oddAttribute() {
  char* const name = p_ = skipSpaces(p_);
  while (!is(peek(p_), kAttributeNameEnd)) {
    ++p_;
  }
  char* const nameEnd = p_;
  p_ = skipSpaces(p_);
  char c = peek(p_);
  if (nameEnd == e_ || (nameEnd == name && (c == '>' || c == '/'))) {
    return c;
  }
  const bool hasValue = c == '=';
  if (hasValue) {
    p_ = skipSpaces(p_ + 1);
    c = peek(p_);
  }
  terminate(nameEnd);
  const bool isQuoted = hasValue && (c == '"' || c == '\'');
  pairs_.push_back({name, isQuoted ? attributeValue(name) : ""});
  return p_ == nullptr || p_ == e_ ? '\0' : c;
}

// Cuts out and decodes the value behind the opening quote at p_, which goes behind the closing
// quote, or becomes nullptr when there is none.
const char* Parser::attributeValue(const char* name) {
  char* const quote = p_;
  char* const value = quote + 1;
  char* const end = find(value, peek(quote));
  if (peek(end) == '\0') {
    p_ = fail(quote, "missing ", {quote, 1});
    return nullptr;
  }
  const Mode mode = doctype_ == nullptr ? Mode::kAttribute : doctype_->attributeMode(list_, name);
  const Decoded decoded = decode(value, value, static_cast<std::size_t>(end - value), mode);
  p_ = end + 1;
  return decoded.inPlace ? value : root_.texts.copy(decoded.text, decoded.length);
}

// The array of the attributes collected.
const char** Parser::attributeArray() {
  static constexpr char kAllBorrowed[] = "                                ";
  constexpr std::size_t kShared = sizeof(kAllBorrowed) - 1;
  static_assert(kAllBorrowed[0] == kBorrowed);
  const std::size_t count = pairs_.size();
  const char* owners = kAllBorrowed + kShared - std::min(count, kShared);
  if (count > kShared) {
    owners = root_.texts.copy(std::string(count, kBorrowed).data(), count);
  }
  const char** const array = root_.words.array<const char*>(2 * count + 2);
  const char** end = array;
  for (const Pair& pair : pairs_) {
    *end++ = pair.name;
    *end++ = pair.value;
  }
  *end++ = nullptr;
  *end = owners;
  return array;
}

char* Parser::endTag(char* p) {
  if (top_ == nullptr) {
    return fail(p, kOutside);
  }
  char* behind = behindEndTag(p, top_->node->name, top_->nameLength);
  if (behind == nullptr) {
    behind = behindOddEndTag(p);
    if (behind == nullptr) {
      return nullptr;
    }
  }
  close();
  return content(behind);
}

// The place behind the end tag of a name at p; nullptr for anything but "</name>" before the last
// byte.
inline char* Parser::behindEndTag(char* p, const char* name, std::size_t length) const {
  const bool isIt = static_cast<std::size_t>(last_ - p) > length + 2 && p[1] == '/' &&
                    p[length + 2] == '>' && sameBytes(name, p + 2, length);
  return isIt ? p + length + 3 : nullptr;
}

// Adds an element behind what the open one has so far; the first is the root. Not yet open.
inline XmlNode* Parser::add(char* name, std::size_t length, const char** attributes) {
  if (top_ == nullptr) {
    root_.xml.name = name;
    root_.xml.attr = attributes;
    return &root_.xml;
  }
  Node* const node = newNode(root_, top_->node, name, attributes, top_->textLength);
  link(node, length);
  return node;
}

// Links a new child of the innermost open element.
inline void Parser::link(Node* node, std::size_t length) {
  Open& parent = *top_;
  Node* const before = std::exchange(parent.lastChild, node);
  const auto byteAt = [node](std::size_t i) { return static_cast<unsigned char>(node->name[i]); };
  const auto hash = byteAt(0) + 5u * byteAt(length - 1) + 11u * static_cast<unsigned>(length);
  const std::uint32_t bit = std::uint32_t{1} << (hash % 32);
  if (before == nullptr) {
    parent.node->child = node;
  } else {
    before->ordered = node;
    node->before = before;
    if (parent.groups > kFewGroups) {
      return;
    }
    Node* const first =
        (parent.seen & bit) == 0 ? nullptr : findGroup(parent.node->child, node->name, length);
    if (first != nullptr) {
      appendSame(first, node);
      return;
    }
    parent.lastGroup->sibling = node;
  }
  parent.lastGroup = node;
  parent.seen |= bit;
  ++parent.groups;
}

inline void Parser::open(XmlNode* node, std::size_t nameLength) {
  opens_.push_back({node, nameLength});
  top_ = &opens_.back();
}

inline void Parser::close() {
  XmlNode* const node = top_->node;
  if (top_->pieces != kNoPieces) {
    piecesEnd_ = pieces_.data() + top_->pieces;
    node->txt = root_.texts.copy(piecesEnd_, top_->textLength);
    node->flags |= kTextAllocated | kTextInBlock;
  }
  if (top_->groups > kFewGroups) {
    regroup(node);
  }
  if (node->child != nullptr) {
    static_cast<Node*>(node->child)->before = top_->lastChild;
  }
  opens_.pop_back();
  top_ = opens_.empty() ? nullptr : &opens_.back();
}

// A piece behind the first. The first itself is copied when the second comes.
void Parser::appendPiece(const char* text, std::size_t length) {
  if (top_->pieces == kNoPieces) {
    const std::size_t first = std::exchange(top_->textLength, 0);
    top_->pieces = static_cast<std::size_t>(piecesEnd_ - pieces_.data());
    if (first != 0) {
      appendPiece(top_->node->txt, first);
    }
  }
  if (static_cast<std::size_t>(pieces_.data() + pieces_.size() - piecesEnd_) < length + kStep) {
    const std::ptrdiff_t used = piecesEnd_ - pieces_.data();
    pieces_.resize(2 * (pieces_.size() + length) + 256);
    piecesEnd_ = pieces_.data() + used;
    piecesLimit_ = pieces_.data() + pieces_.size() - kStep;
  }
  std::memcpy(piecesEnd_, text, length);
  piecesEnd_ += length;
  top_->textLength += length;
}

}  // namespace onu::xml::internal
