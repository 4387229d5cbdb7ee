#include "xml/subset_source.h"

#include <cstring>

#include "xml/scan.h"

namespace xml::internal {

SubsetSource::SubsetSource(const char* text, size_t length, Entities& entities)
    : texts_{{text, text + length}}, entities_(entities) {}

bool SubsetSource::skipSpace() {
  for (;;) {
    Text& top = texts_.back();
    while (top.p != top.e && isSpace(*top.p)) ++top.p;
    if (top.p == top.e) {
      if (texts_.size() == 1) return false;
      texts_.pop_back();
    } else if (*top.p != '%' || !expand()) {
      return true;
    }
  }
}

bool SubsetSource::expand() {
  Text& top = texts_.back();
  size_t length = referenceLength(top.p, top.e);
  const Entity* entity = length == 0 ? nullptr : entities_.parameter.find(top.p + 1, length - 1);
  if (entity == nullptr || !entities_.spend(entity->valueLength)) return false;
  top.p += length;
  texts_.push_back({entity->value, entity->value + entity->valueLength});
  return true;
}

bool SubsetSource::accept(const char* text) {
  size_t length = std::strlen(text);
  Text& top = texts_.back();
  if (!startsWith(top.p, top.e, text, length)) return false;
  top.p += length;
  return true;
}

Token SubsetSource::word(const char* ends) {
  Text& top = texts_.back();
  const char* start = top.p;
  while (top.p != top.e && !isSpace(*top.p) && std::strchr(ends, *top.p) == nullptr) ++top.p;
  return {start, static_cast<size_t>(top.p - start)};
}

bool SubsetSource::atWordEnd() const { return peek() == '\0' || isSpace(peek()); }

Token SubsetSource::quoted() {
  if (peek() != '"' && peek() != '\'') return {};
  char quote[] = {peek(), '\0'};
  skip(1);
  Token token = through(quote);
  if (token.text != nullptr) --token.length;
  return token;
}

Token SubsetSource::through(const char* close) {
  Text& top = texts_.back();
  const char* start = top.p;
  const char* end = afterText(start, top.e, close, std::strlen(close));
  if (end == nullptr) return {};
  top.p = end;
  return {start, static_cast<size_t>(end - start)};
}

void SubsetSource::skipDeclaration() {
  while (peek() != '\0' && peek() != '>') {
    if (peek() == '"' || peek() == '\'') {
      quoted();
    } else {
      skip(1);
    }
  }
  if (peek() == '>') skip(1);
}

}  // namespace xml::internal
