#include "xml/utf16.h"

#include <cstdint>

#include "xml/memory.h"
#include "xml/utf8.h"

namespace xml::internal {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

class Units {
 public:
  Units(const char* text, size_t length, bool highFirst)
      : p_(reinterpret_cast<const unsigned char*>(text)),
        left_(length / 2),
        high_(highFirst ? 0 : 1) {}

  bool atEnd() const { return left_ == 0; }
  uint32_t peek() const { return static_cast<uint32_t>(p_[high_] << 8 | p_[1 - high_]); }
  void skip() {
    p_ += 2;
    --left_;
  }

  uint32_t nextCharacter() {
    uint32_t unit = peek();
    skip();
    if ((unit & 0xF800) != 0xD800) return unit;
    bool isPair = unit < 0xDC00 && left_ != 0 && (peek() & 0xFC00) == 0xDC00;
    if (!isPair) return kReplacement;
    uint32_t low = peek();
    skip();
    return 0x10000 + ((unit & 0x3FF) << 10) + (low & 0x3FF);
  }

 private:
  const unsigned char* p_;
  size_t left_;  // in units
  size_t high_;  // which byte of a unit is the high one
};

}  // namespace

char* utf8FromUtf16(const char* text, size_t length, size_t* newLength) {
  bool highFirst = length >= 2 && text[0] == '\xFE' && text[1] == '\xFF';
  bool lowFirst = length >= 2 && text[0] == '\xFF' && text[1] == '\xFE';
  if (!highFirst && !lowFirst) return nullptr;
  Units units(text + 2, length - 2, highFirst);
  // A unit makes three bytes at most, a pair four.
  auto* converted = static_cast<char*>(allocate(length / 2 * 3 + 1));
  char* to = converted;
  while (!units.atEnd()) to = putUtf8(units.nextCharacter(), to);
  *newLength = static_cast<size_t>(to - converted);
  return converted;
}

}  // namespace xml::internal
