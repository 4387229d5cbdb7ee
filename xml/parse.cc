// Everything between the tags, and the course of a parse.
#include <algorithm>
#include <string>

#include "xml/parser.h"
#include "xml/utf.h"

namespace onu::xml::internal {

namespace {

std::ptrdiff_t countLines(const char* p, const char* e) { return std::count(p, e, '\n'); }

}  // namespace

// Of no data, a byte of our own is the last.
Parser::Parser(RootImpl& root)
    : root_(root), e_(root.e), last_(root.s == root.e ? &lastByte_ : root.e - 1), stop_(root.e) {
  lastByte_ = root.s == root.e ? '\0' : *last_;
  hideLast();
  pairs_.reserve(16);
  opens_.expect(std::clamp<std::size_t>(static_cast<std::size_t>(e_ - root_.s) / 16,
                                        12 * sizeof(Open), 8192));
}

// The first byte wanted at or after p, or the end of the data.
char* Parser::find(char* p, char wanted) const {
  if (p == e_) {
    return p;
  }
  while (*p != wanted && *p != '\0') {
    ++p;
  }
  return p == last_ && lastByte_ != wanted && lastByte_ != '\0' ? e_ : p;
}

char* Parser::skipSpaces(char* p) const {
  while (isSpace(peek(p))) {
    ++p;
  }
  return p;
}

// The place of the first mark behind which a '>' stands, or nullptr.
char* Parser::closing(char* text, std::string_view mark) const {
  for (char* p = find(text, '>'); peek(p) == '>'; p = find(p + 1, '>')) {
    if (static_cast<std::size_t>(p - text) >= mark.size() && startsWith(p - mark.size(), p, mark)) {
      return p - mark.size();
    }
  }
  return nullptr;
}

// The markup that starts at p, or the end of the data.
char* Parser::markupAt(char* p) {
  if (peek(p) == '\0') {
    stop_ = p;
    return nullptr;
  }
  return p == last_ ? fail(p, kUnexpected) : p;
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

char* Parser::outsideContent(char* text) {
  char* const stop = find(text, '<');
  if (hasRoot()) {
    text = skipSpaces(text);
    if (text < stop) {
      return fail(text, kOutside);
    }
  }
  return markupAt(stop);
}

// Any markup but tags, or a tag of which no more than the last byte is there.
char* Parser::otherMarkup(char* p) {
  switch (const char c = peek(p + 1); c) {
    case '?':
      return instruction(p);
    case '!':
      return declaration(p);
    case '/':
      return top_ == nullptr ? fail(p, kOutside) : behindOddEndTag(p);
    default:
      return is(c, kNameStart) ? startTag(p) : fail(p, kUnexpected);
  }
}

char* Parser::declaration(char* p) {
  showLast();
  const bool isComment = startsWith(p + 1, e_, "!--");
  const bool isCharacterData = startsWith(p + 1, e_, "![CDATA[");
  const bool isDocumentType = startsWith(p + 1, e_, "!DOCTYPE");
  hideLast();
  if (isComment) {
    return comment(p);
  }
  if (isCharacterData) {
    return characterData(p);
  }
  return isDocumentType ? documentType(p) : fail(p, kUnexpected);
}

char* Parser::comment(char* p) {
  char* const close = closing(p + 4, "--");
  return close == nullptr ? fail(p, "unclosed <!--") : close + 3;
}

char* Parser::characterData(char* p) {
  if (top_ == nullptr) {
    return fail(p, kOutside);
  }
  char* const text = p + 9;
  char* const close = closing(text, "]]");
  if (close == nullptr) {
    return fail(p, "unclosed <![CDATA[");
  }
  appendText(text, static_cast<std::size_t>(close - text));
  return close + 3;
}

// Keeps the count of lines right, which decoding in place changes.
Decoded Parser::decode(char* text, char* odd, std::size_t length, Mode mode) {
  const std::ptrdiff_t lines = countLines(odd, text + length);
  const Decoded decoded = decoder_.decode(text, odd, length, mode);
  if (lines != 0 || decoder_.movesLines()) {
    lostLines_ += lines - countLines(odd, text + length);
  }
  return decoded;
}

char* Parser::fail(const char* place, std::string_view message, std::string_view argument) {
  showLast();
  const std::ptrdiff_t line = 1 + countLines(root_.s, place) + lostLines_;
  std::string text = "[error near line " + std::to_string(line) + "]: ";
  text += message;
  const std::size_t hole = text.find("%s");
  if (hole != std::string::npos) {
    text.replace(hole, 2, argument.substr(0, sizeof(root_.err)));
  }
  root_.err[text.copy(root_.err, sizeof(root_.err) - 1)] = '\0';
  hideLast();
  failed_ = true;
  return nullptr;
}

}  // namespace onu::xml::internal

namespace onu::xml {

XmlRoot* parseStr(char* data, std::size_t length) {
  internal::RootImpl* const root = internal::newRoot(data, length);
  root->u = internal::utf8FromUtf16(data, length, &length);
  if (root->u != nullptr) {
    root->s = root->u;
    root->e = root->s + length;
  }
  internal::Parser(*root).run();
  return root;
}

}  // namespace onu::xml
