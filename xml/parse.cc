// What few bytes of a file are: the markup between the tags, and errors.
#include <algorithm>
#include <string>

#include "xml/parser.h"

namespace onu::xml::internal {

using namespace std::string_view_literals;

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
    return fail(p, "unexpected closing tag </", found, ">");
  }
  char* const tagEnd = skipSpaces(nameEnd);
  return peek(tagEnd) == '>' ? tagEnd + 1 : fail(tagEnd, "missing >");
}

char* Parser::declaration(char* p) {
  const char c = peek(p + 2);
  const std::string_view mark = c == '-' ? "--"sv : c == '[' ? "[CDATA["sv : "DOCTYPE"sv;
  showLast();
  const bool isIt = startsWith(p + 2, e_, mark);
  hideLast();
  if (!isIt) {
    return fail(p, kUnexpected);
  }
  if (c != '-') {
    return c == '[' ? characterData(p) : documentType(p);
  }
  char* const close = closing(p + 4, mark);
  return close == nullptr ? fail(p, "unclosed <!--") : close + 3;
}

char* Parser::characterData(char* p) {
  if (top_ == nullptr) {
    return fail(p, kOutside);
  }
  char* const text = p + 9;
  char* const close = closing(text, "]]"sv);
  if (close == nullptr) {
    return fail(p, "unclosed <![CDATA[");
  }
  appendText(text, static_cast<std::size_t>(close - text));
  return close + 3;
}

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
  char* const close = closing(target, "?"sv);
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
  instructions_.push_back({targets_.add(name), text});
  return close + 2;
}

// Puts the instructions into the document's table. Those before the root stand before its name.
void Parser::publishInstructions() {
  for (std::size_t i = 0; i != targets_.size(); ++i) {
    instructions_.push_back({i, nullptr});  // for the sides
  }
  root_.pi = root_.words.lists(targets_, instructions_);
  for (const char*** list = root_.pi; *list != nullptr; ++list) {
    const char** text = *list + 1;
    std::string sides;
    for (; *text != nullptr; ++text) {
      sides += hasRoot() && root_.xml.name < *text ? '>' : '<';
    }
    text[1] = root_.texts.copy(sides.data(), sides.size());
  }
}

char* Parser::fail(const char* place, std::string_view message, std::string_view argument,
                   std::string_view behind) {
  showLast();
  const std::ptrdiff_t line = 1 + std::count<const char*>(root_.s, place, '\n') + lostLines_;
  std::string text = "[error near line " + std::to_string(line) + "]: ";
  text += message;
  text += argument.substr(0, sizeof(root_.err));
  text += behind;
  root_.err[text.copy(root_.err, sizeof(root_.err) - 1)] = '\0';
  hideLast();
  return nullptr;
}

}  // namespace onu::xml::internal
