// Start tags, their attributes, end tags, and the plain text between them.
#include "xml/parser.h"

namespace xml::internal {

namespace {

bool startsName(char c) {
  auto byte = static_cast<unsigned char>(c);
  return ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') || byte == '_' || byte == ':' ||
         byte >= 0x80;
}

}  // namespace

// Reads the markup at p_ and the character data behind it.
bool Parser::markup() {
  char c = peek(p_ + 1);
  if (startsName(c)) return startTag();
  if (c == '/') return endTag();
  if (c == '?') return instruction();
  if (c == '!') return declaration();
  return fail(p_, "unexpected <");
}

// Takes the character data at `text` and leaves p_ at the markup behind it. `stop`, when known, is
// the first byte of it that needs attention. Data that no markup follows is no content.
bool Parser::content(char* text, char* stop) {
  if (stop == nullptr) stop = find<ContentEnd>(text, e_);
  if (!builder_.isOpen()) return outsideContent(text, stop);
  if (peek(stop) != '<') return decodedContent(text, stop);
  builder_.appendText(text, static_cast<size_t>(stop - text), true);
  p_ = stop;
  return true;
}

bool Parser::startTag() {
  if (!builder_.isOpen() && builder_.hasRoot()) return fail(p_, kOutside);
  char* name = p_ + 1;
  char* stop = nullptr;
  char* nameEnd = nameAndStop(name, &stop);
  auto length = static_cast<size_t>(nameEnd - name);

  TagEnd tag = {nameEnd, peek(nameEnd)};
  const char** array = noAttributes();
  if (tag.character != '>') {
    tag = attributes(nameEnd, name, length);
    if (tag.place == nullptr) return false;
    if (!pairs_.empty()) array = attributeArray();
  }
  bool isEmpty = tag.character == '/';
  if (isEmpty ? peek(tag.place + 1) != '>' : tag.character != '>') {
    return fail(tag.place, "missing >");
  }
  XmlNode* node = builder_.add(name, length, array);
  if (!isEmpty) return startContent(node, nameEnd, tag.place + 1, stop);
  terminate(nameEnd);
  return content(tag.place + 2, nullptr);
}

// Most elements hold one text and nothing else; those never become the open element. The name is
// ended only when it has been compared: reading bytes again that were just written in part takes
// its time.
bool Parser::startContent(XmlNode* node, char* nameEnd, char* text, char* stop) {
  auto nameLength = static_cast<size_t>(nameEnd - node->name);
  if (stop == nullptr) stop = find<ContentEnd>(text, e_);
  char* name = stop + 2;
  if (static_cast<size_t>(e_ - stop) > nameLength + 2 && stop[0] == '<' && stop[1] == '/' &&
      name[nameLength] == '>' && equalBytes(node->name, name, nameLength, e_)) {
    if (stop != text) node->txt = text;
    *stop = '\0';
    terminate(nameEnd);
    return content(name + nameLength + 1, nullptr);
  }
  terminate(nameEnd);
  builder_.open(node, nameLength);
  return content(text, stop);
}

bool Parser::endTag() {
  if (!builder_.isOpen()) return fail(p_, kOutside);
  char* name = p_ + 2;
  size_t length = builder_.openLength();
  if (static_cast<size_t>(e_ - name) > length && name[length] == '>' &&
      equalBytes(builder_.openName(), name, length, e_)) {
    builder_.close();
    return content(name + length + 1, nullptr);
  }
  char* nameEnd = name;
  while (peek(nameEnd) != '\0' && !isSpace(*nameEnd) && *nameEnd != '>') ++nameEnd;
  auto found = static_cast<size_t>(nameEnd - name);
  if (found != length || std::memcmp(name, builder_.openName(), length) != 0) {
    return fail(p_, "unexpected closing tag </%s>", {name, found});
  }
  char* tagEnd = skipSpace(nameEnd, e_);
  if (peek(tagEnd) != '>') return fail(tagEnd, "missing >");
  builder_.close();
  return content(tagEnd + 1, nullptr);
}

// The set holds every byte up to the blank and '=', but control characters do not end a name, nor
// does '=' a tag's.
char* Parser::endOfName(char* p, bool isAttribute) {
  for (;; ++p) {
    p = find<NameEnd>(p, e_);
    char c = peek(p);
    bool isControl = c != '\0' && static_cast<unsigned char>(c) < ' ' && !isSpace(c);
    if (c == '=' ? isAttribute : !isControl) return p;
  }
}

// Finds the end of a tag's name and, when the tag ends there and it is near, where its content
// stops. Both come from the same bytes: one after the other would take the time of two loads.
char* Parser::nameAndStop(char* name, [[maybe_unused]] char** stop) {
#if defined(__SSE2__)
  if (e_ - name > 32) {
    Bytes first = load16(name);
    unsigned ends = bits(NameEnd::hits(first));
    if (ends != 0) {
      int length = __builtin_ctz(ends);
      if (name[length] == '>') {
        uint64_t stops = hits32<ContentEnd>(first, load16(name + 16)) >> (length + 1);
        if (stops != 0) *stop = name + length + 1 + __builtin_ctzll(stops);
        return name + length;
      }
    }
  }
#endif
  return endOfName(name, false);
}

// Collects attributes of the usual form: one blank, a name and a value that need no attention,
// double quotes, not too long together. Returns the place behind them.
char* Parser::plainAttributes(char* p) {
#if defined(__SSE2__)
  if (doctype_ != nullptr) return p;
  while (e_ - p > 33 && *p == ' ') {
    char* name = p + 1;
    Bytes first = load16(name);
    unsigned ends = bits(NameEnd::hits(first));
    uint64_t stops = hits32<ValueEnd<'"'>>(first, load16(name + 16));
    if (ends == 0) return p;
    int length = __builtin_ctz(ends);
    stops = stops >> length >> 2;
    char* value = name + length + 2;
    if (stops == 0 || value[-2] != '=' || value[-1] != '"') return p;
    char* end = value + __builtin_ctzll(stops);
    if (*end != '"') return p;
    value[-2] = '\0';
    *end = '\0';
    pairs_.reserve(2);
    const char** pair = pairs_.data() + pairs_.size();
    pair[0] = name;
    pair[1] = value;
    pairs_.resize(pairs_.size() + 2);
    p = end + 1;
  }
#endif
  return p;
}

// Collects the attributes from p to the end of the tag in pairs_. One without a quoted value gets
// the empty one.
Parser::TagEnd Parser::attributes(char* p, const char* element, size_t elementLength) {
  pairs_.resize(0);
  p = plainAttributes(p);
  for (;;) {
    p = skipSpace(p, e_);
    char c = peek(p);
    if (c == '\0' || c == '/' || c == '>') return {p, c};

    char* name = p;
    char* nameEnd = endOfName(p, true);
    p = skipSpace(nameEnd, e_);
    c = peek(p);
    if (nameEnd == e_) return {p, c};
    bool hasValue = c == '=';
    if (hasValue) {
      p = skipSpace(p + 1, e_);
      c = peek(p);
    }
    terminate(nameEnd);
    pairs_.push() = name;
    if (hasValue && (c == '"' || c == '\'')) {
      p = attributeValue(p, element, elementLength);
      if (p == nullptr) return {nullptr, '\0'};
    } else {
      pairs_.push() = "";
      if (c == '\0' || c == '/' || c == '>') return {p, c};
    }
  }
}

// Cuts out and decodes the value behind an opening quote for the name on top of pairs_. Returns the
// place behind the closing quote.
char* Parser::attributeValue(char* quote, const char* element, size_t elementLength) {
  char* value = quote + 1;
  bool isDouble = *quote == '"';
  char* end = isDouble ? find<ValueEnd<'"'>>(value, e_) : find<ValueEnd<'\''>>(value, e_);
  if (peek(end) != *quote || doctype_ != nullptr) {
    end = isDouble ? find<OneOrEnd<'"'>>(end, e_) : find<OneOrEnd<'\''>>(end, e_);
    if (peek(end) == '\0') {
      fail(quote, "missing %s", {quote, 1});
      return nullptr;
    }
    Mode mode = Mode::kAttribute;
    if (doctype_ != nullptr) {
      const char* name = pairs_.top();
      mode = doctype_->attributeMode(element, elementLength, name, std::strlen(name));
    }
    Decoded decoded = decode(value, static_cast<size_t>(end - value), mode);
    value = decoded.inPlace ? decoded.text : root_.arena.copy(decoded.text, decoded.length);
  }
  *end = '\0';
  pairs_.push() = value;
  return end + 1;
}

const char** Parser::attributeArray() {
  size_t count = pairs_.size();
  const char** array = root_.arena.array<const char*>(count + 2);
  std::memcpy(array, pairs_.data(), count * sizeof(*array));
  array[count] = nullptr;
  const char* owners = borrowedText(count / 2);
  if (owners == nullptr) {
    char* text = root_.arena.text(count / 2 + 1);
    std::memset(text, kBorrowed, count / 2);
    text[count / 2] = '\0';
    owners = text;
  }
  array[count + 1] = owners;
  return array;
}

// Ends a name, whose place may hold a line feed that counts for the lines of later errors.
void Parser::terminate(char* end) {
  lostLines_ += *end == '\n' ? 1 : 0;
  *end = '\0';
}

}  // namespace xml::internal
