// Line ends, references and white space of character data, attribute values and entity values.
#pragma once

#include <cstddef>

#include "xml/entities.h"

namespace onu::xml::internal {

// Writes a value of up to 31 bits in UTF-8, six bytes at most, and returns the place behind it.
char* putUtf8(std::uint32_t value, char* to);

// The wire characters of the modes stand for themselves in the table of declared defaults.
enum class Mode : char {
  kContent = '&',    // general entities
  kEntity = '%',     // the value of an entity: parameter entities only
  kAttribute = ' ',  // white space becomes spaces
  kTokens = '*',     // and runs of spaces become one, those at the ends none
};

struct Decoded {
  char* text;  // NUL behind it only when `inPlace`
  std::size_t length;
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

  // Decodes [text, text + length), which must be followed by a writable byte. Nothing before `odd`
  // needs it.
  Decoded decode(char* text, char* odd, std::size_t length, Mode mode);

  // Whether that made or took line feeds; it may also have moved them.
  bool movesLines() const { return movesLines_; }

 private:
  bool copyPlain();
  void lineEnd();
  void reference();
  bool characterReference();
  bool predefined();
  void replace(std::size_t referenceLength, std::string_view value);
  void enlarge(std::size_t bytes);

  Entities* entities_ = nullptr;
  bool movesLines_ = false;
  char* heap_ = nullptr;  // where text went that outgrew its place
  Mode mode_ = Mode::kContent;
  unsigned stops_ = 0;  // classes of bytes that may need decoding
  // Text written, a gap, and text still to read; replacements are put in front of the latter and
  // read in their turn.
  char* start_ = nullptr;
  char* write_ = nullptr;
  char* read_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace onu::xml::internal
