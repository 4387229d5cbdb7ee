// Line ends, references and white space of character data, attribute values and entity values.
#pragma once

#include <cstddef>

#include "xml/entities.h"

namespace xml::internal {

// The wire characters of the modes stand for themselves in the table of declared defaults.
enum class Mode : char {
  kContent = '&',    // general entities
  kEntity = '%',     // the value of an entity: parameter entities only
  kAttribute = ' ',  // white space becomes spaces
  kTokens = '*',     // and runs of spaces become one, those at the ends none
};

struct Decoded {
  char* text;  // NUL behind it only when `inPlace`
  size_t length;
  bool inPlace;  // else the decoder's, valid until its next use
};

// Decodes texts of one document where they lie, or in a buffer of its own where replacements need
// more room.
class Decoder {
 public:
  Decoder() = default;
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder();

  // The declared entities; until set there are only the predefined ones.
  void setEntities(Entities* entities) { entities_ = entities; }

  // Decodes [text, text + length), which must be followed by a writable byte.
  Decoded decode(char* text, size_t length, Mode mode);

 private:
  void step(Mode mode);
  void copyRun(Mode mode);
  void lineEnd(Mode mode);
  void reference(Mode mode);
  bool characterReference();
  bool predefined(const char* name, size_t length);
  void replace(size_t referenceLength, const Entity& entity);
  void enlarge(size_t bytes);

  Entities* entities_ = nullptr;
  char* heap_ = nullptr;  // where text went that outgrew its place
  size_t capacity_ = 0;
  // Text written, a gap, and text still to read; replacements are put in front of the latter and
  // read in their turn.
  char* start_ = nullptr;
  char* write_ = nullptr;
  char* read_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace xml::internal
