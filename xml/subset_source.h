// Reading an internal subset token by token, parameter entities expanded in place.
#pragma once

#include <cstddef>
#include <vector>

#include "xml/entities.h"

namespace xml::internal {

// A piece of the subset or of a replacement text, without NUL.
struct Token {
  const char* text = nullptr;  // NULL: there was no such token
  size_t length = 0;
};

// The subset with the replacement texts being read on top of it. Their texts must outlive the
// source.
class SubsetSource {
 public:
  SubsetSource(const char* text, size_t length, Entities& entities);

  // Next byte, NUL at the end of the text on top.
  char peek() const { return texts_.back().p == texts_.back().e ? '\0' : *texts_.back().p; }
  void skip(size_t bytes) { texts_.back().p += bytes; }

  // Skips white space, goes back from ended replacement texts and into those of parameter entities
  // referred to here. False at the end of the subset.
  bool skipSpace();

  // Whether the text on top goes on like this; reads past it if so.
  bool accept(const char* text);

  // What stands before white space or one of `ends`; may be empty.
  Token word(const char* ends);
  // Whether white space, or the end of the text on top, follows.
  bool atWordEnd() const;

  // What stands between quotes; no text when there is no quote, or none to close it, which leaves
  // the opening one read.
  Token quoted();
  // What stands up to and with `close`; no text, and nothing read, when that is missing.
  Token through(const char* close);

  // Skips a declaration of no interest with its '>', or to the end of the text on top.
  void skipDeclaration();

  // The place in the input, that of the outermost reference inside a replacement text.
  const char* place() const { return texts_.front().p; }

 private:
  struct Text {
    const char* p;
    const char* e;
  };
  bool expand();

  std::vector<Text> texts_;
  Entities& entities_;
};

}  // namespace xml::internal
