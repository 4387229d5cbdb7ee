#include "xml/subset_source.h"

#include "xml/scan.h"

namespace onu::xml::internal {

bool SubsetSource::skipSpace() {
  for (;;) {
    while (isSpace(peek())) {
      skip(1);
    }
    if (texts_.back().empty()) {
      if (texts_.size() == 1) {
        return false;
      }
      texts_.pop_back();
    } else if (peek() != '%' || !expand()) {
      return true;
    }
  }
}

bool SubsetSource::expand() {
  const std::string_view text = texts_.back();
  const std::size_t length = referenceLength(text.data(), text.data() + text.size());
  const Entity* const entity =
      length == 0 ? nullptr : entities_.parameter.find(text.substr(1, length - 1));
  if (entity == nullptr || !entities_.spend(entity->value.size())) {
    return false;
  }
  skip(length);
  texts_.push_back(entity->value);
  return true;
}

bool SubsetSource::accept(std::string_view text) {
  const bool goesOn = texts_.back().substr(0, text.size()) == text;
  skip(goesOn ? text.size() : 0);
  return goesOn;
}

Token SubsetSource::word(std::string_view ends) {
  const std::string_view text = texts_.back();
  std::size_t length = 0;
  while (length != text.size() && !isSpace(text[length]) &&
         ends.find(text[length]) == std::string_view::npos) {
    ++length;
  }
  skip(length);
  return text.substr(0, length);
}

Token SubsetSource::quoted() {
  const char quote = peek();
  if (quote != '"' && quote != '\'') {
    return {};
  }
  skip(1);
  return upTo({&quote, 1});
}

Token SubsetSource::upTo(std::string_view close) {
  const std::string_view text = texts_.back();
  const std::size_t length = text.find(close);
  if (length == std::string_view::npos) {
    return {};
  }
  skip(length + close.size());
  return text.substr(0, length);
}

void SubsetSource::skipDeclaration() {
  while (peek() != '\0' && peek() != '>') {
    if (peek() == '"' || peek() == '\'') {
      quoted();
    } else {
      skip(1);
    }
  }
}

}  // namespace onu::xml::internal
