// Start tags, their attributes, end tags, the plain text between them, and the tree made of them.
#include <utility>

#include "xml/parser.h"

namespace onu::xml::internal {

void Parser::run() {
  char* p = root_.s == e_ ? nullptr : outsideContent(root_.s);
  while (p != nullptr) {
    const char c = peek(p + 1);
    if (is(c, kNameStart)) {
      p = startTag(p);
    } else if (c == '/') {
      p = endTag(p);
    } else {
      p = otherMarkup(p);
      p = p == nullptr ? nullptr : content(p);
    }
  }
  end();
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
    tagEnd = attributes(&p, {name, length}, &array);
    if (p == nullptr) {
      return nullptr;
    }
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

// Collects the attributes from the place on, which becomes that of what ends the tag: '/', '>', or
// NUL at the end of the data. It becomes nullptr after an error.
char Parser::attributes(char** place, std::string_view element, const char*** array) {
  auto** start = reinterpret_cast<const char**>(root_.words.next());
  const char** pair = start;
  char* p = *place;
  char c = '\0';
  for (;;) {
    while (isSpace(*p)) {
      ++p;
    }
    char* const name = p;
    p = skipTo(p, kAttributeNameEnd);
    c = *p;
    if (p == name && (c == '>' || c == '/')) {
      break;
    }
    if (root_.words.left() < static_cast<std::size_t>(pair - start + 4) * sizeof(*pair)) {
      const char** const moved = roomForPair(start, pair);
      pair = moved + (pair - start);
      start = moved;
    }
    if (c == '=' && p[1] == '"' && p != name && doctype_ == nullptr) {
      char* const end = skipTo(p + 2, kValueStop);
      if (*end == '"') {
        *p = '\0';
        *end = '\0';
        pair[0] = name;
        pair[1] = p + 2;
        pair += 2;
        p = end + 1;
        continue;
      }
    }
    p = name;
    c = oddAttribute(&p, element, &pair);
    if (c == '>' || c == '/' || c == '\0') {
      break;
    }
  }
  *place = p;
  if (p != nullptr && pair != start) {
    *array = finishArray(start, pair);
  }
  return c;
}

// Any form of an attribute at the place. One without a quoted value gets the empty one. Returns
// what stands at the place behind it.
char Parser::oddAttribute(char** place, std::string_view element, const char*** pair) {
  char* p = skipSpaces(*place);
  char c = peek(p);
  char* const name = p;
  while (!is(peek(p), kAttributeNameEnd)) {
    ++p;
  }
  char* const nameEnd = p;
  p = skipSpaces(p);
  if (c == '>' || c == '/' || nameEnd == e_) {
    *place = p;
    return peek(p);
  }
  c = peek(p);
  const bool hasValue = c == '=';
  if (hasValue) {
    p = skipSpaces(p + 1);
    c = peek(p);
  }
  terminate(nameEnd);
  *place = p;
  const bool isQuoted = hasValue && (c == '"' || c == '\'');
  *(*pair)++ = name;
  *(*pair)++ = isQuoted ? attributeValue(place, element, name) : "";
  return *place == nullptr || *place == e_ ? '\0' : c;
}

// Cuts out and decodes the value behind the opening quote at the place, which becomes that behind
// the closing quote, or nullptr when there is none.
const char* Parser::attributeValue(char** place, std::string_view element, const char* name) {
  char* const quote = *place;
  char* const value = quote + 1;
  char* const end = find(value, peek(quote));
  if (peek(end) == '\0') {
    *place = fail(quote, "missing %s", {quote, 1});
    return nullptr;
  }
  const Mode mode = doctype_ == nullptr ? Mode::kAttribute : doctype_->attributeMode(element, name);
  const Decoded decoded = decode(value, static_cast<std::size_t>(end - value), mode);
  *end = '\0';
  *place = end + 1;
  return decoded.inPlace ? value : root_.texts.copy(decoded.text, decoded.length);
}

// Makes room for another pair and the array's end; the array may move.
const char** Parser::roomForPair(const char** array, const char** pair) {
  const auto bytes = static_cast<std::size_t>(pair - array) * sizeof(*array);
  root_.words.startBlock(2 * bytes + 16 * sizeof(*array));
  auto** const moved = reinterpret_cast<const char**>(root_.words.next());
  if (bytes != 0) {
    std::memcpy(moved, array, bytes);
  }
  return moved;
}

const char** Parser::finishArray(const char** array, const char** pair) {
  static constexpr char kAllBorrowed[] = "                                ";
  constexpr std::size_t kShared = sizeof(kAllBorrowed) - 1;
  static_assert(kAllBorrowed[0] == kBorrowed);
  const auto count = static_cast<std::size_t>(pair - array) / 2;
  const char* owners = kAllBorrowed + kShared - (count < kShared ? count : kShared);
  if (count > kShared) {
    char* const text = root_.texts.take(count + 1);
    std::memset(text, kBorrowed, count);
    text[count] = '\0';
    owners = text;
  }
  pair[0] = nullptr;
  pair[1] = owners;
  root_.words.takeUpTo(reinterpret_cast<char*>(pair + 2));
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

char* Parser::behindOddEndTag(char* p) {
  char* const name = p + 2;
  char* nameEnd = name;
  while (peek(nameEnd) != '\0' && !isSpace(peek(nameEnd)) && peek(nameEnd) != '>') {
    ++nameEnd;
  }
  const std::string_view found(name, static_cast<std::size_t>(nameEnd - name));
  showLast();
  const bool isIt = found == std::string_view(top_->node->name, top_->nameLength);
  hideLast();
  if (!isIt) {
    return fail(p, "unexpected closing tag </%s>", found);
  }
  char* const tagEnd = skipSpaces(nameEnd);
  return peek(tagEnd) == '>' ? tagEnd + 1 : fail(tagEnd, "missing >");
}

// Adds an element behind what the open one has so far; the first is the root. Not yet open.
inline XmlNode* Parser::add(char* name, std::size_t length, const char** attributes) {
  if (top_ == nullptr) {
    root_.xml.name = name;
    root_.xml.attr = attributes;
    return &root_.xml;
  }
  XmlNode* const node = newNode(root_, top_->node, name, attributes, top_->textLength);
  link(node, length);
  return node;
}

// Links a new child of the innermost open element.
inline void Parser::link(XmlNode* node, std::size_t length) {
  Open& parent = *top_;
  XmlNode* const before = parent.lastChild;
  (before == nullptr ? parent.node->child : before->ordered) = node;
  parent.lastChild = node;

  const char* const name = node->name;
  const auto hash = static_cast<unsigned char>(name[0]) +
                    5u * static_cast<unsigned char>(name[length - 1]) +
                    11u * static_cast<unsigned>(length);
  const std::uint32_t bit = std::uint32_t{1} << (hash % 32);
  if ((parent.seen & bit) != 0) {
    // What is compared stands before the new name, so that its length can be read there.
    for (XmlNode* first = parent.node->child; first != nullptr; first = first->sibling) {
      if (first->name[length] == '\0' && sameBytes(first->name, name, length)) {
        first->parent->next = node;
        first->parent = node;
        return;
      }
    }
  }
  if (parent.groups > kFewGroups) {
    return;
  }
  if (before != nullptr) {
    parent.lastGroup->sibling = node;
  }
  parent.lastGroup = node;
  node->parent = node;
  parent.seen |= bit;
  if (++parent.groups > kFewGroups) {
    parent.seen = 0;
  }
}

// Groups the children of many names again, with a table.
void Parser::regroup(XmlNode* parent) const {
  std::size_t places = 4 * kFewGroups;
  std::size_t children = 0;
  for (const XmlNode* node = parent->child; node != nullptr; node = node->ordered) {
    places *= 2 * ++children > places ? 2 : 1;
  }
  std::vector<XmlNode*> firsts(places);
  const KeyedHash hash;
  XmlNode* lastGroup = nullptr;
  for (XmlNode* node = parent->child; node != nullptr; node = node->ordered) {
    node->next = node->sibling = nullptr;
    std::size_t i = hash(node->name) & (places - 1);
    while (firsts[i] != nullptr && std::strcmp(firsts[i]->name, node->name) != 0) {
      i = (i + 1) & (places - 1);
    }
    XmlNode*& first = firsts[i];
    if (first != nullptr) {
      first->parent->next = node;
    } else {
      if (lastGroup != nullptr) {
        lastGroup->sibling = node;
      }
      lastGroup = first = node;
    }
    first->parent = node;
  }
}

inline void Parser::open(XmlNode* node, std::size_t nameLength) {
  open_.push_back({node, nameLength, 0, kNoPieces, nullptr, nullptr, 0, 0});
  top_ = &open_.back();
}

void Parser::close() {
  XmlNode* const node = top_->node;
  if (top_->pieces != kNoPieces) {
    node->txt = root_.texts.copy(pieces_.data() + top_->pieces, top_->textLength);
    node->flags |= kTextAllocated | kTextInBlock;
    piecesEnd_ = top_->pieces;
  }
  if (top_->groups > kFewGroups) {
    regroup(node);
  }
  for (XmlNode* first = node->child; first != nullptr; first = first->sibling) {
    first->parent = node;
  }
  open_.pop_back();
  top_ = open_.empty() ? nullptr : &open_.back();
}

// A piece behind the first. One of the input is copied in steps where so much can be read.
void Parser::appendPiece(const char* text, std::size_t length, bool isInput) {
  constexpr std::size_t kStep = 8;
  if (top_->pieces == kNoPieces) {
    const std::size_t first = std::exchange(top_->textLength, 0);
    top_->pieces = piecesEnd_;
    if (first != 0) {
      appendPiece(top_->node->txt, first, true);
    }
  }
  top_->textLength += length;
  if (pieces_.size() - piecesEnd_ < length + 2 * kStep) {
    pieces_.resize(2 * (pieces_.size() + length) + 256);
  }
  char* const to = pieces_.data() + piecesEnd_;
  piecesEnd_ += length;
  if (isInput && length <= 2 * kStep && static_cast<std::size_t>(last_ - text) > 2 * kStep) {
    std::memcpy(to, text, kStep);
    std::memcpy(to + kStep, text + kStep, kStep);
  } else {
    std::memcpy(to, text, length);
  }
}

}  // namespace onu::xml::internal
