#include "xml/doctype.h"

#include <cstring>

#include "xml/scan.h"

namespace xml::internal {

namespace {

constexpr const char* kUnclosedList = "unclosed <!ATTLIST";
constexpr const char* kMalformedList = "malformed <!ATTLIST";

bool closes(const char* p, const char* e) {
  if (*p != ']') return false;
  for (++p; p != e && isSpace(*p); ++p) {
  }
  return p != e && *p == '>';
}

// Behind the comment, instruction or quoted value that starts at p, p itself when none does, NULL
// when it has no end.
const char* skipOpaque(const char* p, const char* e, bool inDeclaration) {
  if (startsWith(p, e, "<!--", 4)) return afterText(p + 4, e, "-->", 3);
  if (startsWith(p, e, "<?", 2)) return afterText(p + 2, e, "?>", 2);
  if (inDeclaration && (*p == '"' || *p == '\'')) return afterText(p + 1, e, p, 1);
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
    const char* behind = skipOpaque(p, e, inDeclaration);
    if (behind != p) {
      if (behind == nullptr) return nullptr;
      p = behind;
      continue;
    }
    if (closes(p, e)) return p;
    if (*p == '<') inDeclaration = true;
    if (*p == '>') inDeclaration = false;
    ++p;
  }
  return nullptr;
}

}  // namespace

// In a document that is not well formed what looks like the end shall be it, from then on: each
// careful look may go to the end of the data.
const char* Doctype::subsetEnd(const char* p, const char* e) {
  const char* end = isWellFormed_ ? carefulEnd(p, e) : nullptr;
  isWellFormed_ = end != nullptr;
  return isWellFormed_ ? end : plainEnd(p, e);
}

DoctypeError Doctype::read(const char* subset, size_t length) {
  error_ = {};
  SubsetSource source(subset, length, entities_);
  declarations(source);
  isFreeOfCircles(true);
  return error_;
}

Mode Doctype::attributeMode(const char* element, size_t elementLength, const char* name,
                            size_t length) const {
  size_t list = index_.find(this, element, elementLength);
  if (list == NameIndex::kNone) return Mode::kAttribute;
  size_t i = index_.find(defaults_[list].element, name, length);
  return i == NameIndex::kNone ? Mode::kAttribute : defaults_[list].attributes[i].mode;
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
  const char* place = source.place();
  if (source.accept("<!--")) {
    return source.through("-->").text != nullptr || fail(place, "unclosed <!--");
  }
  if (source.accept("<?"))
    return source.through("?>").text != nullptr || fail(place, "unclosed <?");
  if (source.accept("<!ATTLIST")) return attributeList(source);
  if (source.accept("<!ENTITY") && !entity(source)) {
    return false;
  }
  source.skipDeclaration();
  return true;
}

// The document's list begins with these, and the first declaration of a name holds.
bool Doctype::isPredefined(const char* key) const {
  for (size_t i = 0; i != kPredefinedEntities; ++i) {
    if (std::strcmp(root_.predefined[2 * i], key) == 0) return true;
  }
  return false;
}

// Declarations of external entities have no value to keep.
bool Doctype::entity(SubsetSource& source) {
  const char* place = source.place();
  if (!source.skipSpace()) {
    return true;
  }
  bool isParameter = source.accept("%");
  if (!source.skipSpace()) {
    return true;
  }
  Token name = source.word("\"'>");
  if (name.length == 0 || !source.skipSpace()) {
    return true;
  }
  Token value = source.quoted();
  if (value.text == nullptr) {
    return true;
  }

  char* key = root_.arena.copy(name.text, name.length + 1);
  key[name.length] = ';';
  if (!isParameter && isPredefined(key)) {
    return true;
  }
  char* text = root_.arena.copy(value.text, value.length);
  Decoded decoded = decoder_.decode(text, value.length, Mode::kEntity);
  if (!decoded.inPlace) decoded.text = root_.arena.copy(decoded.text, decoded.length);
  EntityTable& table = isParameter ? entities_.parameter : entities_.general;
  if (!table.add({key, name.length + 1, decoded.text, decoded.length, place, declared_})) {
    return true;
  }
  ++declared_;
  return isFreeOfCircles(false);
}

bool Doctype::attributeList(SubsetSource& source) {
  const char* place = source.place();
  if (!source.skipSpace()) return fail(place, kUnclosedList);
  Token element = source.word(">");
  if (element.length == 0) return fail(place, kMalformedList);
  for (;;) {
    if (!source.skipSpace()) return fail(place, kUnclosedList);
    if (source.accept(">")) return true;
    Token name = source.word(">/=");
    if (name.length == 0 || !source.atWordEnd()) return fail(place, kMalformedList);
    Mode mode = Mode::kAttribute;
    if (!source.skipSpace()) return fail(place, kUnclosedList);
    if (!attributeType(source, &mode)) return fail(place, kMalformedList);
    if (!source.skipSpace()) return fail(place, kUnclosedList);
    if (!defaultValue(source, element, name, mode)) return fail(place, kMalformedList);
  }
}

bool Doctype::attributeType(SubsetSource& source, Mode* mode) {
  if (source.peek() != '(') {
    Token type = source.word("(>\"'#");
    bool characters = type.length == 5 && std::memcmp(type.text, "CDATA", 5) == 0;
    bool notation = type.length == 8 && std::memcmp(type.text, "NOTATION", 8) == 0;
    *mode = characters ? Mode::kAttribute : Mode::kTokens;
    if (!notation) return type.length != 0;
    if (!source.skipSpace()) return false;
  }
  *mode = Mode::kTokens;
  return source.accept("(") && source.through(")").text != nullptr;
}

bool Doctype::defaultValue(SubsetSource& source, Token element, Token name, Mode mode) {
  if (source.accept("#FIXED")) {
    if (!source.skipSpace()) return false;
  } else if (source.peek() == '#') {
    return source.word(">").length > 1;
  }
  Token value = source.quoted();
  if (value.text == nullptr) return false;
  addDefault(element, name, value, mode);
  return true;
}

void Doctype::addDefault(Token element, Token name, Token value, Mode mode) {
  size_t list = index_.find(this, element.text, element.length);
  if (list == NameIndex::kNone) {
    list = defaults_.size();
    defaults_.push_back({root_.arena.copy(element.text, element.length), {}});
    index_.add(this, defaults_[list].element, element.length, list);
  }
  ElementDefaults& defaults = defaults_[list];
  if (index_.find(defaults.element, name.text, name.length) != NameIndex::kNone) return;

  char* text = root_.arena.copy(value.text, value.length);
  Decoded decoded = decoder_.decode(text, value.length, mode);
  if (!decoded.inPlace) decoded.text = root_.arena.copy(decoded.text, decoded.length);
  const char* key = root_.arena.copy(name.text, name.length);
  index_.add(defaults.element, key, name.length, defaults.attributes.size());
  defaults.attributes.push_back({key, decoded.text, mode, declared_});
}

bool Doctype::fail(const char* place, const char* message, const char* argument) {
  error_ = {place, message, argument};
  return false;
}

// A circle is the error of the declaration that closes it, even where it is found later: what
// stands behind that declaration does not hold.
bool Doctype::isFreeOfCircles(bool now) {
  const Entity* first = entities_.general.firstCircular(now);
  const Entity* other = entities_.parameter.firstCircular(now || first != nullptr);
  if (first == nullptr && other != nullptr) {
    first = entities_.general.firstCircular(true);
  }
  if (first == nullptr || (other != nullptr && other->order < first->order)) {
    first = other;
  }
  if (first == nullptr) {
    return true;
  }
  held_ = first->order;
  return fail(first->place, "circular entity declaration &%s", first->name);
}

void Doctype::publish() const {
  const auto& general = entities_.general.all();
  const char** entity =
      root_.arena.array<const char*>(2 * (kPredefinedEntities + general.size()) + 1);
  root_.ent = entity;
  for (size_t i = 0; i < 2 * kPredefinedEntities; ++i) {
    *entity++ = root_.predefined[i];
  }
  for (const Entity& declared : general) {
    if (declared.order > held_) {
      break;
    }
    *entity++ = declared.name;
    *entity++ = declared.value;
  }
  *entity = nullptr;

  const char*** lists = root_.arena.array<const char**>(defaults_.size() + 1);
  root_.attr = lists;
  for (const ElementDefaults& defaults : defaults_) {
    if (defaults.attributes.front().order > held_) {
      break;
    }
    *lists++ = publish(defaults);
  }
  *lists = nullptr;
}

const char** Doctype::publish(const ElementDefaults& defaults) const {
  const char** list = root_.arena.array<const char*>(2 + 3 * defaults.attributes.size());
  const char** text = list;
  *text++ = defaults.element;
  for (const Default& attribute : defaults.attributes) {
    if (attribute.order > held_) {
      break;
    }
    *text++ = attribute.name;
    *text++ = attribute.value;
    *text++ = attribute.mode == Mode::kTokens ? "*" : " ";
  }
  *text = nullptr;
  return list;
}

}  // namespace xml::internal
