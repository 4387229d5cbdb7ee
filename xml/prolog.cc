// What few files hold: document types and processing instructions.
#include <algorithm>

#include "xml/parser.h"

namespace onu::xml::internal {

namespace {

// Whether an XML declaration's text, which is read as far as it holds pairs of a name and a quoted
// value, sets "standalone" to yes.
bool saysStandalone(std::string_view text) {
  constexpr std::string_view kName = "standalone";
  if (text.find(kName) == std::string_view::npos) {
    return false;
  }
  Entities none;
  SubsetSource source(text, none);
  for (;;) {
    source.skipSpace();
    const bool isStandalone = source.word("=") == kName;
    source.skipSpace();
    const bool hasValue = source.accept("=");
    source.skipSpace();
    const Token value = source.quoted();
    if (!hasValue || value.data() == nullptr) {
      return false;
    }
    if (isStandalone) {
      return value == "yes";
    }
  }
}

}  // namespace

char* Parser::documentType(char* start) {
  for (char* p = start + 9; peek(p) != '\0'; ++p) {
    const char c = peek(p);
    if (c == '>') {
      return p + 1;
    }
    if (c == '[') {
      return internalSubset(start, p + 1);
    }
    char* const close = c == '"' || c == '\'' ? find(p + 1, c) : p;
    p = peek(close) == c ? close : p;
  }
  return fail(start, "unclosed <!DOCTYPE");
}

char* Parser::internalSubset(char* p, char* start) {
  showLast();
  if (doctype_ == nullptr) {
    e_ = std::find(start, e_, '\0');
    doctype_ = std::make_unique<Doctype>(root_, decoder_);
  }
  const char* const close = doctype_->subsetEnd(start, e_);
  if (close == nullptr) {
    return fail(p, "unclosed <!DOCTYPE");
  }
  const auto length = static_cast<std::size_t>(close - start);
  const DoctypeError error = doctype_->read({start, length});
  hideLast();
  if (error.message != nullptr) {
    return fail(error.place, error.message, error.argument);
  }
  return skipSpaces(start + length + 1) + 1;
}

// The XML declaration is looked at, other instructions are kept.
char* Parser::instruction(char* p) {
  char* const target = p + 2;
  char* const close = closing(target, "?");
  if (close == nullptr) {
    return fail(p, "unclosed <?");
  }
  char* targetEnd = target;
  while (targetEnd != close && !isSpace(*targetEnd)) {
    ++targetEnd;
  }
  const std::string_view name(target, static_cast<std::size_t>(targetEnd - target));
  char* const text = skipSpace(targetEnd, close);
  if (name == "xml") {
    if (!hasRoot() && saysStandalone({text, static_cast<std::size_t>(close - text)})) {
      root_.standalone = 1;
    }
    return close + 2;
  }
  terminate(targetEnd);
  *close = '\0';
  const std::size_t i = targets_.add(name);
  if (i == instructions_.size()) {
    instructions_.push_back({target, {}, {}});
  }
  instructions_[i].texts.push_back(text);
  instructions_[i].sides += hasRoot() ? '>' : '<';
  return close + 2;
}

// Puts the instructions into the document's table.
void Parser::publishInstructions() {
  const char*** lists = root_.words.array<const char**>(instructions_.size() + 1);
  root_.pi = lists;
  for (const Instructions& list : instructions_) {
    const char** text = root_.words.array<const char*>(list.texts.size() + 3);
    *lists++ = text;
    *text++ = list.target;
    text = std::copy(list.texts.begin(), list.texts.end(), text);
    *text++ = nullptr;
    *text = root_.texts.copy(list.sides.data(), list.sides.size());
  }
  *lists = nullptr;
}

}  // namespace onu::xml::internal
