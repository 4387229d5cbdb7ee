#include "xml/utf.h"

#include <string_view>

#include "xml/memory.h"

namespace onu::xml::internal {

char* putUtf8(std::uint32_t value, char* to) {
  if (value < 0x80) {
    *to++ = static_cast<char>(value);
    return to;
  }
  const int bits = 32 - __builtin_clz(value);
  int more = (bits - 2) / 5;
  *to++ = static_cast<char>((0xFFu << (7 - more)) | (value >> (6 * more)));
  while (more-- != 0) {
    *to++ = static_cast<char>(0x80 | ((value >> (6 * more)) & 0x3F));
  }
  return to;
}

namespace {

// Takes the next character from units whose high byte is at `high`.
std::uint32_t takeCharacter(std::string_view& units, std::size_t high) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  const auto unitAt = [&units, high](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(units[i + high]) << 8 |
                                      static_cast<unsigned char>(units[i + 1 - high]));
  };
  const std::uint32_t unit = unitAt(0);
  const std::uint32_t next = units.size() < 4 ? 0 : unitAt(2);
  const bool isPair = (unit & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00;
  units.remove_prefix(isPair ? 4 : 2);
  if (isPair) {
    return 0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF);
  }
  return (unit & 0xF800) == 0xD800 ? kReplacement : unit;
}

}  // namespace

char* utf8FromUtf16(const char* text, std::size_t length, std::size_t* newLength) {
  std::string_view units(text, length);
  const std::string_view mark = units.substr(0, 2);
  if (mark != "\xFE\xFF" && mark != "\xFF\xFE") {
    return nullptr;
  }
  const std::size_t high = mark == "\xFE\xFF" ? 0 : 1;
  units = units.substr(2, (length - 2) / 2 * 2);
  // A unit makes three bytes at most, a pair four.
  auto* const converted = static_cast<char*>(allocate(length / 2 * 3 + 1));
  char* to = converted;
  while (!units.empty()) {
    to = putUtf8(takeCharacter(units, high), to);
  }
  *newLength = static_cast<std::size_t>(to - converted);
  return converted;
}

}  // namespace onu::xml::internal
