#include "xml/doctype.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "xml/scan.h"

namespace onu::xml::internal {

using namespace std::string_view_literals;

namespace {

constexpr const char* kUnclosedList = "unclosed <!ATTLIST";
constexpr const char* kMalformedList = "malformed <!ATTLIST";

// Behind the comment, instruction or quoted value that starts at p, p itself when none does,
// nullptr when it has no end.
const char* skipOpaque(const char* p, const char* e, bool inDeclaration) {
  if (startsWith(p, e, "<!--"sv)) {
    return behindText(p + 4, e, "-->"sv);
  }
  if (startsWith(p, e, "<?"sv)) {
    return behindText(p + 2, e, "?>"sv);
  }
  if (inDeclaration && (*p == '"' || *p == '\'')) {
    return behindText(p + 1, e, {p, 1});
  }
  return p;
}

// The end of a subset: outside of quotes and comments, or whatever they say.
const char* findEnd(const char* p, const char* e, bool isCareful) {
  bool inDeclaration = false;
  while (p != e) {
    const char* const behind = isCareful ? skipOpaque(p, e, inDeclaration) : p;
    if (behind != p) {
      if (behind == nullptr) {
        break;
      }
      p = behind;
      continue;
    }
    inDeclaration = *p == '<' || (inDeclaration && *p != '>');
    if (*p++ == ']' && startsWith(skipSpace(p, e), e, ">"sv)) {
      return p - 1;
    }
  }
  return nullptr;
}

// What an attribute of the element with that list is found by.
std::string keyOf(std::size_t list, std::string_view name) {
  return std::string(reinterpret_cast<const char*>(&list), sizeof(list)).append(name);
}

// Reads an attribute's type. False when there is none.
bool attributeType(SubsetSource& source, Mode* mode) {
  *mode = Mode::kTokens;
  if (source.peek() != '(') {
    const Token type = source.word("(>\"'#"sv);
    if (type == "CDATA") {
      *mode = Mode::kAttribute;
    }
    if (type != "NOTATION") {
      return !type.empty();
    }
    if (!source.skipSpace()) {
      return false;
    }
  }
  return source.accept("("sv) && source.upTo(")"sv).data() != nullptr;
}

// Reads what follows the type: into `value` a default, if it is one. False when it is nothing.
bool defaultValue(SubsetSource& source, Token* value) {
  if (source.accept("#FIXED"sv)) {
    if (!source.skipSpace()) {
      return false;
    }
  } else if (source.peek() == '#') {
    return source.word(">"sv).size() > 1;
  }
  *value = source.quoted();
  return value->data() != nullptr;
}

}  // namespace

// In a document that is not well formed what looks like the end shall be it, from then on: each
// careful look may go to the end of the data.
const char* Doctype::subsetEnd(const char* p, const char* e) {
  const char* const end = isWellFormed_ ? findEnd(p, e, true) : nullptr;
  isWellFormed_ = end != nullptr;
  return isWellFormed_ ? end : findEnd(p, e, false);
}

DoctypeError Doctype::read(std::string_view subset) {
  SubsetSource source(subset, entities_);
  while (source.skipSpace()) {
    const char* const place = source.place();
    if (source.peek() != '<') {
      source.skip(1);
    } else if (const char* const message = declaration(source); message != nullptr) {
      return {place, message, circular_};
    }
  }
  return {};
}

Mode Doctype::attributeMode(std::size_t list, std::string_view name) const {
  const std::size_t i = list == NameTable::kNone ? list : attributes_.find(keyOf(list, name));
  return i == NameTable::kNone ? Mode::kAttribute : Mode{*defaults_[3 * i + 2].text};
}

const char* Doctype::declaration(SubsetSource& source) {
  if (source.accept("<!--"sv)) {
    return source.upTo("-->"sv).data() != nullptr ? nullptr : "unclosed <!--";
  }
  if (source.accept("<?"sv)) {
    return source.upTo("?>"sv).data() != nullptr ? nullptr : "unclosed <?";
  }
  if (source.accept("<!ATTLIST"sv)) {
    return attributeList(source);
  }
  const char* const message = source.accept("<!ENTITY"sv) ? entity(source) : nullptr;
  source.skipDeclaration();
  return message;
}

// Declarations of external entities have no value to keep. The predefined entities stay, as any
// first declaration does.
const char* Doctype::entity(SubsetSource& source) {
  source.skipSpace();
  const bool isParameter = source.accept("%"sv);
  source.skipSpace();
  const Token name = source.word("\"'>"sv);
  source.skipSpace();
  const Token value = source.quoted();
  if (name.empty() || value.data() == nullptr) {
    return nullptr;
  }
  char* const key = root_.texts.copy(name.data(), name.size() + 1);
  key[name.size()] = ';';
  const std::string_view fullName(key, name.size() + 1);
  for (std::size_t i = 0; !isParameter && kPredefined[i] != nullptr; i += 2) {
    if (fullName == kPredefined[i]) {
      return nullptr;
    }
  }
  EntityTable& table = isParameter ? entities_.parameter : entities_.general;
  if (!table.add(fullName, decodedCopy(value, Mode::kEntity)) || !table.isNewestCircular()) {
    return nullptr;
  }
  circular_ = fullName;
  return "circular entity declaration &";
}

const char* Doctype::attributeList(SubsetSource& source) {
  if (!source.skipSpace()) {
    return kUnclosedList;
  }
  const Token element = source.word(">"sv);
  if (element.empty()) {
    return kMalformedList;
  }
  std::size_t list = NameTable::kNone;
  while (source.skipSpace()) {
    if (source.accept(">"sv)) {
      return nullptr;
    }
    const Token name = source.word(">/="sv);
    if (source.peek() != '\0' && !isSpace(source.peek())) {
      return kMalformedList;
    }
    if (!source.skipSpace()) {
      break;
    }
    Mode mode = Mode::kAttribute;
    if (!attributeType(source, &mode)) {
      return kMalformedList;
    }
    if (!source.skipSpace()) {
      break;
    }
    Token value;
    if (!defaultValue(source, &value)) {
      return kMalformedList;
    }
    if (value.data() != nullptr) {
      list = list == NameTable::kNone ? listFor(element) : list;
      addDefault(list, name, value, mode);
    }
  }
  return kUnclosedList;
}

std::size_t Doctype::listFor(std::string_view element) {
  const std::size_t list = elements_.find(element);
  return list != NameTable::kNone
             ? list
             : elements_.add({root_.texts.copy(element.data(), element.size()), element.size()});
}

void Doctype::addDefault(std::size_t list, Token name, Token value, Mode mode) {
  const std::string key = keyOf(list, name);
  if (attributes_.find(key) != NameTable::kNone) {
    return;
  }
  const char* const copy = root_.texts.copy(key.data(), key.size());
  attributes_.add({copy, key.size()});
  const char* const type = mode == Mode::kTokens ? "*" : " ";
  for (const char* text : {copy + sizeof(list), decodedCopy(value, mode).data(), type}) {
    defaults_.push_back({list, text});
  }
}

// The value decoded, in the document's own memory, with a NUL behind it.
std::string_view Doctype::decodedCopy(Token value, Mode mode) {
  char* const text = root_.texts.copy(value.data(), value.size());
  const Decoded decoded = decoder_.decode(text, text, value.size(), mode);
  return {decoded.inPlace ? text : root_.texts.copy(decoded.text, decoded.length), decoded.length};
}

void Doctype::publish() const {
  const auto& general = entities_.general.all();
  const char** text = root_.words.array<const char*>(std::size(kPredefined) + 2 * general.size());
  root_.ent = text;
  text = std::copy(kPredefined, std::end(kPredefined) - 1, text);
  for (const Entity& declared : general) {
    *text++ = declared.name.data();
    *text++ = declared.value.data();
  }
  *text = nullptr;
  root_.attr = root_.words.lists(elements_, defaults_);
}

}  // namespace onu::xml::internal
