// Reading an internal subset token by token, parameter entities expanded in place.
#pragma once

#include <string_view>
#include <vector>

#include "xml/entities.h"

namespace onu::xml::internal {

// A piece of the subset or of a replacement text; no data where there was no such token.
using Token = std::string_view;

// The subset with the replacement texts being read on top of it. Their texts must outlive the
// source.
class SubsetSource {
 public:
  SubsetSource(std::string_view text, Entities& entities) : texts_{text}, entities_(entities) {}

  // Next byte, NUL at the end of the text on top.
  char peek() const { return texts_.back().empty() ? '\0' : texts_.back().front(); }
  void skip(std::size_t bytes) { texts_.back().remove_prefix(bytes); }

  // Skips white space, goes back from ended replacement texts and into those of parameter entities
  // referred to here. False at the end of the subset.
  bool skipSpace();

  // Whether the text on top goes on like this; reads past it if so.
  bool accept(std::string_view text);

  // What stands before white space or one of `ends`; may be empty.
  Token word(std::string_view ends);

  // What stands between quotes; nothing when there is no quote, or none to close it, which leaves
  // the opening one read.
  Token quoted();
  // What stands before `close`, which is read too; nothing, and nothing read, when that is missing.
  Token upTo(std::string_view close);

  // Skips a declaration of no interest, to its '>' or to the end of the text on top.
  void skipDeclaration();

  // The place in the input, that of the outermost reference inside a replacement text.
  const char* place() const { return texts_.front().data(); }

 private:
  bool expand();

  std::vector<std::string_view> texts_;
  Entities& entities_;
};

}  // namespace onu::xml::internal
