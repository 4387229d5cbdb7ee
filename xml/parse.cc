// Everything between the tags, and the course of a parse.
#include <algorithm>
#include <charconv>
#include <string_view>

#include "xml/parser.h"
#include "xml/utf16.h"

namespace xml::internal {

namespace {

ptrdiff_t countLines(const char* p, const char* e) {
  ptrdiff_t lines = 0;
  while (p != e && (p = static_cast<const char*>(
                        std::memchr(p, '\n', static_cast<size_t>(e - p)))) != nullptr) {
    ++lines;
    ++p;
  }
  return lines;
}

// Whether an XML declaration's text, which is read as far as it holds pairs of a name and a quoted
// value, sets "standalone" to yes.
bool saysStandalone(char* p, const char* e) {
  for (;;) {
    const char* name = p = skipSpace(p, e);
    while (p != e && !isSpace(*p) && *p != '=') ++p;
    bool isStandalone = p - name == 10 && std::memcmp(name, "standalone", 10) == 0;
    p = skipSpace(p, e);
    if (p == e || *p != '=') return false;
    char* quote = skipSpace(p + 1, e);
    if (quote == e || (*quote != '"' && *quote != '\'')) return false;
    const char* behind = afterText(quote + 1, e, quote, 1);
    if (behind == nullptr) return false;
    p = quote + (behind - quote);
    if (isStandalone) return p - quote == 5 && std::memcmp(quote + 1, "yes", 3) == 0;
  }
}

// Writes the parts one after another, as far as they fit.
void fillError(char (&error)[sizeof(XmlRoot::err)], std::initializer_list<std::string_view> parts) {
  size_t length = 0;
  for (std::string_view part : parts) {
    length += part.copy(error + length, sizeof(error) - 1 - length);
  }
  error[length] = '\0';
}

}  // namespace

void Parser::run() {
  if (content(p_, nullptr)) {
    while (markup()) {
    }
  }
  end();
}

void Parser::end() {
  if (!failed_ && builder_.isOpen()) fail(p_, "unclosed tag <%s>", builder_.openName());
  if (!failed_ && !builder_.hasRoot()) fail(p_, "root tag missing");
  root_.cur = builder_.isOpen() ? builder_.openNode() : nullptr;
  builder_.closeAll();
  if (instructions_ != nullptr) {
    instructions_->publish(root_);
  }
  if (doctype_ != nullptr) {
    doctype_->publish();
  }
}

// Character data of the open element, where bytes from `stop` on have to be decoded.
bool Parser::decodedContent(char* text, char* stop) {
  p_ = find<MarkupOrEnd>(stop, e_);
  if (peek(p_) == '\0') return false;
  Decoded decoded = decode(text, static_cast<size_t>(p_ - text), Mode::kContent);
  builder_.appendText(decoded.text, decoded.length, decoded.inPlace);
  return true;
}

bool Parser::outsideContent(char* text, char* stop) {
  stop = find<MarkupOrEnd>(stop, e_);
  if (builder_.hasRoot()) {
    text = skipSpace(text, stop);
    if (text != stop) return fail(text, kOutside);
  }
  p_ = stop;
  return peek(stop) != '\0';
}

bool Parser::declaration() {
  if (goesOn(p_ + 1, "!--", 3)) return comment();
  if (goesOn(p_ + 1, "![CDATA[", 8)) return characterData();
  if (goesOn(p_ + 1, "!DOCTYPE", 8)) return documentType();
  return fail(p_, "unexpected <");
}

bool Parser::comment() {
  char* close = findText<'-'>(p_ + 4, e_, "-->", 3);
  if (close == nullptr) return fail(p_, "unclosed <!--");
  return content(close + 3, nullptr);
}

bool Parser::characterData() {
  if (!builder_.isOpen()) return fail(p_, kOutside);
  char* text = p_ + 9;
  char* close = findText<']'>(text, e_, "]]>", 3);
  if (close == nullptr) return fail(p_, "unclosed <![CDATA[");
  builder_.appendText(text, static_cast<size_t>(close - text), true);
  return content(close + 3, nullptr);
}

bool Parser::documentType() {
  for (char* p = p_ + 9; peek(p) != '\0'; ++p) {
    if (*p == '>') return content(p + 1, nullptr);
    if (*p == '[') return internalSubset(p + 1);
    if (*p != '"' && *p != '\'') continue;
    char* close = *p == '"' ? find<OneOrEnd<'"'>>(p + 1, e_) : find<OneOrEnd<'\''>>(p + 1, e_);
    if (peek(close) != '\0') p = close;
  }
  return fail(p_, "unclosed <!DOCTYPE");
}

bool Parser::internalSubset(char* start) {
  if (doctype_ == nullptr) {
    if (void* nul = std::memchr(start, '\0', static_cast<size_t>(e_ - start)); nul != nullptr) {
      e_ = static_cast<char*>(nul);
    }
    doctype_ = std::make_unique<Doctype>(root_, decoder_);
    decoder_.setEntities(&doctype_->entities());
  }
  const char* close = doctype_->subsetEnd(start, e_);
  if (close == nullptr) {
    return fail(p_, "unclosed <!DOCTYPE");
  }
  const auto length = static_cast<size_t>(close - start);
  const DoctypeError error = doctype_->read(start, length);
  if (error.message != nullptr) {
    return fail(error.place, error.message, error.argument);
  }
  return content(skipSpace(start + length + 1, e_) + 1, nullptr);
}

// The XML declaration is looked at, other instructions are kept.
bool Parser::instruction() {
  char* target = p_ + 2;
  char* close = findText<'?'>(target, e_, "?>", 2);
  if (close == nullptr) return fail(p_, "unclosed <?");
  char* targetEnd = target;
  while (targetEnd != close && !isSpace(*targetEnd)) ++targetEnd;
  auto length = static_cast<size_t>(targetEnd - target);
  char* text = skipSpace(targetEnd, close);
  if (length == 3 && std::memcmp(target, "xml", 3) == 0) {
    if (!builder_.hasRoot() && saysStandalone(text, close)) root_.standalone = 1;
  } else {
    if (instructions_ == nullptr) instructions_ = std::make_unique<Instructions>();
    terminate(targetEnd);
    *close = '\0';
    instructions_->add(target, length, text, !builder_.hasRoot());
  }
  return content(close + 2, nullptr);
}

// Keeps the count of lines right, which decoding in place changes.
Decoded Parser::decode(char* text, size_t length, Mode mode) {
  lostLines_ += countLines(text, text + length);
  Decoded decoded = decoder_.decode(text, length, mode);
  lostLines_ -= countLines(text, text + length);
  return decoded;
}

bool Parser::fail(const char* place, std::string_view message, std::string_view argument) {
  char line[24];
  const char* lineEnd =
      std::to_chars(line, line + sizeof(line), 1 + countLines(root_.s, place) + lostLines_).ptr;
  constexpr std::string_view kHole = "%s";
  size_t before = std::min(message.find(kHole), message.size());
  size_t behind = std::min(before + kHole.size(), message.size());
  fillError(root_.err, {"[error near line ",
                        {line, static_cast<size_t>(lineEnd - line)},
                        "]: ",
                        message.substr(0, before),
                        argument,
                        message.substr(behind)});
  failed_ = true;
  return false;
}

}  // namespace xml::internal

namespace xml {

XmlRoot* parseStr(char* data, size_t length) {
  internal::RootImpl* root = internal::newRoot();
  root->m = data;
  root->len = static_cast<ptrdiff_t>(length);
  root->u = internal::utf8FromUtf16(data, length, &length);
  root->s = root->u != nullptr ? root->u : data;
  root->e = root->s + length;
  root->arena.expect(length);
  internal::Parser(*root).run();
  return root;
}

}  // namespace xml
