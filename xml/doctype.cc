#include "xml/doctype.h"

#include <algorithm>

#include "xml/scan.h"

namespace onu::xml::internal {

namespace {

constexpr const char* kUnclosedList = "unclosed <!ATTLIST";
constexpr const char* kMalformedList = "malformed <!ATTLIST";

bool closes(const char* p, const char* e) {
  if (*p != ']') {
    return false;
  }
  p = skipSpace(p + 1, e);
  return p != e && *p == '>';
}

// Behind the comment, instruction or quoted value that starts at p, p itself when none does,
// nullptr when it has no end.
const char* skipOpaque(const char* p, const char* e, bool inDeclaration) {
  if (startsWith(p, e, "<!--")) {
    return behindText(p + 4, e, "-->");
  }
  if (startsWith(p, e, "<?")) {
    return behindText(p + 2, e, "?>");
  }
  if (inDeclaration && (*p == '"' || *p == '\'')) {
    return behindText(p + 1, e, {p, 1});
  }
  return p;
}

// The end of a subset whatever quotes and comments say.
const char* plainEnd(const char* start, const char* e) {
  for (const char* p = start; p != e; ++p) {
    if (closes(p, e)) {
      return p;
    }
  }
  return nullptr;
}

// The end of a subset outside of quotes and comments.
const char* carefulEnd(const char* start, const char* e) {
  bool inDeclaration = false;
  for (const char* p = start; p != e;) {
    const char* const behind = skipOpaque(p, e, inDeclaration);
    if (behind == nullptr || (behind == p && closes(p, e))) {
      return behind;
    }
    if (behind == p) {
      inDeclaration = *p == '<' || (inDeclaration && *p != '>');
    }
    p = behind == p ? p + 1 : behind;
  }
  return nullptr;
}

}  // namespace

Doctype::Doctype(RootImpl& root, Decoder& decoder) : root_(root), decoder_(decoder) {
  decoder_.setEntities(&entities_);
}

// In a document that is not well formed what looks like the end shall be it, from then on: each
// careful look may go to the end of the data.
const char* Doctype::subsetEnd(const char* p, const char* e) {
  const char* const end = isWellFormed_ ? carefulEnd(p, e) : nullptr;
  isWellFormed_ = end != nullptr;
  return isWellFormed_ ? end : plainEnd(p, e);
}

DoctypeError Doctype::read(std::string_view subset) {
  SubsetSource source(subset, entities_);
  declarations(source);
  return error_;
}

Mode Doctype::attributeMode(std::size_t list, std::string_view name) const {
  if (list == NameTable::kNone) {
    return Mode::kAttribute;
  }
  const std::size_t i = defaults_[list].places.find(name);
  return i == NameTable::kNone ? Mode::kAttribute : defaults_[list].attributes[i].mode;
}

bool Doctype::declarations(SubsetSource& source) {
  while (source.skipSpace()) {
    if (source.peek() != '<') {
      source.skip(1);
    } else if (!declaration(source)) {
      return false;
    }
  }
  return true;
}

bool Doctype::declaration(SubsetSource& source) {
  const char* const place = source.place();
  if (source.accept("<!--")) {
    return source.upTo("-->").data() != nullptr || fail(place, "unclosed <!--");
  }
  if (source.accept("<?")) {
    return source.upTo("?>").data() != nullptr || fail(place, "unclosed <?");
  }
  if (source.accept("<!ATTLIST")) {
    return attributeList(source);
  }
  if (source.accept("<!ENTITY") && !entity(source)) {
    return false;
  }
  source.skipDeclaration();
  return true;
}

// The document's list begins with these, and the first declaration of a name holds.
bool Doctype::isPredefined(std::string_view key) const {
  for (std::size_t i = 0; i != kPredefinedEntities; ++i) {
    if (root_.predefined[2 * i] == key) {
      return true;
    }
  }
  return false;
}

// Declarations of external entities have no value to keep.
bool Doctype::entity(SubsetSource& source) {
  const char* const place = source.place();
  if (!source.skipSpace()) {
    return true;
  }
  const bool isParameter = source.accept("%");
  if (!source.skipSpace()) {
    return true;
  }
  const Token name = source.word("\"'>");
  if (name.empty() || !source.skipSpace()) {
    return true;
  }
  const Token value = source.quoted();
  if (value.data() == nullptr) {
    return true;
  }

  char* const key = root_.texts.copy(name.data(), name.size() + 1);
  key[name.size()] = ';';
  const std::string_view fullName(key, name.size() + 1);
  if (!isParameter && isPredefined(fullName)) {
    return true;
  }
  const std::string_view text = decodedCopy(value, Mode::kEntity);
  EntityTable& table = isParameter ? entities_.parameter : entities_.general;
  return !table.add({fullName, text}) || !table.isNewestCircular() ||
         fail(place, "circular entity declaration &%s", fullName);
}

bool Doctype::attributeList(SubsetSource& source) {
  const char* const place = source.place();
  if (!source.skipSpace()) {
    return fail(place, kUnclosedList);
  }
  const Token element = source.word(">");
  if (element.empty()) {
    return fail(place, kMalformedList);
  }
  std::size_t list = NameTable::kNone;
  for (;;) {
    if (!source.skipSpace()) {
      return fail(place, kUnclosedList);
    }
    if (source.accept(">")) {
      return true;
    }
    const Token name = source.word(">/=");
    if (name.empty() || (source.peek() != '\0' && !isSpace(source.peek()))) {
      return fail(place, kMalformedList);
    }
    Mode mode = Mode::kAttribute;
    if (!source.skipSpace()) {
      return fail(place, kUnclosedList);
    }
    if (!attributeType(source, &mode)) {
      return fail(place, kMalformedList);
    }
    if (!source.skipSpace()) {
      return fail(place, kUnclosedList);
    }
    if (!defaultValue(source, &list, element, name, mode)) {
      return fail(place, kMalformedList);
    }
  }
}

bool Doctype::attributeType(SubsetSource& source, Mode* mode) {
  *mode = Mode::kTokens;
  if (source.peek() != '(') {
    const Token type = source.word("(>\"'#");
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
  return source.accept("(") && source.upTo(")").data() != nullptr;
}

bool Doctype::defaultValue(SubsetSource& source, std::size_t* list, Token element, Token name,
                           Mode mode) {
  if (source.accept("#FIXED")) {
    if (!source.skipSpace()) {
      return false;
    }
  } else if (source.peek() == '#') {
    return source.word(">").size() > 1;
  }
  const Token value = source.quoted();
  if (value.data() == nullptr) {
    return false;
  }
  addDefault(list, element, name, value, mode);
  return true;
}

void Doctype::addDefault(std::size_t* list, Token element, Token name, Token value, Mode mode) {
  if (*list == NameTable::kNone) {
    *list = places_.add(element);
  }
  if (*list == defaults_.size()) {
    defaults_.push_back({root_.texts.copy(element.data(), element.size()), {}, {}});
  }
  ElementDefaults& defaults = defaults_[*list];
  if (defaults.places.add(name) == defaults.attributes.size()) {
    const char* const key = root_.texts.copy(name.data(), name.size());
    defaults.attributes.push_back({key, decodedCopy(value, mode).data(), mode});
  }
}

// The value decoded, in the document's own memory, with a NUL behind it.
std::string_view Doctype::decodedCopy(Token value, Mode mode) {
  char* const text = root_.texts.copy(value.data(), value.size());
  const Decoded decoded = decoder_.decode(text, text, value.size(), mode);
  return {decoded.inPlace ? text : root_.texts.copy(decoded.text, decoded.length), decoded.length};
}

bool Doctype::fail(const char* place, const char* message, std::string_view argument) {
  error_ = {place, message, argument};
  return false;
}

void Doctype::publish() const {
  const auto& general = entities_.general.all();
  const char** entity =
      root_.words.array<const char*>(2 * (kPredefinedEntities + general.size()) + 1);
  root_.ent = entity;
  entity = std::copy_n(root_.predefined, 2 * kPredefinedEntities, entity);
  for (const Entity& declared : general) {
    *entity++ = declared.name.data();
    *entity++ = declared.value.data();
  }
  *entity = nullptr;

  const char*** lists = root_.words.array<const char**>(defaults_.size() + 1);
  root_.attr = lists;
  for (const ElementDefaults& defaults : defaults_) {
    const char** text = root_.words.array<const char*>(2 + 3 * defaults.attributes.size());
    *lists++ = text;
    *text++ = defaults.element;
    for (const Default& attribute : defaults.attributes) {
      *text++ = attribute.name;
      *text++ = attribute.value;
      *text++ = attribute.mode == Mode::kTokens ? "*" : " ";
    }
    *text = nullptr;
  }
  *lists = nullptr;
}

}  // namespace onu::xml::internal
