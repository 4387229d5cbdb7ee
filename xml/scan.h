// What each byte ends or begins, told by one look into a table: four instructions a byte, loop
// included, on the unit's processor, which has no vector instructions. Where it was done with those
// of a PC and a byte at a time elsewhere, 23 KiB of settings took 1.9 times the instructions to
// parse on the unit, and 1.6 times to write; 20 KiB now take 12.9 and 12.2 a byte (script/bench
// machine, settings_20k).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace onu::xml::internal {

// Sets of bytes. The zero byte is in all that end something.
enum ByteClass : std::uint8_t {
  kSpace = 0x01,
  kTagNameEnd = 0x02,
  kAttributeNameEnd = 0x04,
  kContentStop = 0x08,  // the next markup, or what has to be decoded
  kValueStop = 0x10,    // likewise in an attribute's or entity's value, with both quotes
  kNameStart = 0x20,
  kContentEscape = 0x40,  // what cannot be written as it is
  kValueEscape = 0x80,
};

constexpr std::array<std::uint8_t, 256> makeByteClasses() {
  using std::string_view_literals::operator""sv;
  constexpr struct {
    std::string_view bytes;
    int classes;
  } kSets[] = {
      {" \t\n\r"sv, kSpace | kTagNameEnd | kAttributeNameEnd},
      {"/>"sv, kTagNameEnd | kAttributeNameEnd},
      {"="sv, kAttributeNameEnd},
      {"<&\r\0"sv, kContentStop},
      {"\"'&%\r\n\t\0"sv, kValueStop},
      {"&<>\r\0"sv, kContentEscape | kValueEscape},
      {"\"\n\t"sv, kValueEscape},
      {"\0"sv, kTagNameEnd | kAttributeNameEnd},
      {"_:"sv, kNameStart},
  };
  std::array<std::uint8_t, 256> classes = {};
  for (const auto& set : kSets) {
    for (const char c : set.bytes) {
      classes[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(set.classes);
    }
  }
  for (std::size_t c = 0; c != classes.size(); ++c) {
    const bool isLetter = ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c >= 0x80;
    if (isLetter) {
      classes[c] |= kNameStart;
    }
  }
  return classes;
}

inline constexpr std::array<std::uint8_t, 256> kByteClasses = makeByteClasses();

inline bool is(char c, unsigned classes) {
  return (kByteClasses[static_cast<unsigned char>(c)] & classes) != 0;
}

inline bool isSpace(char c) { return is(c, kSpace); }

// First byte at or after p that is of the classes. There must be one.
template <typename Char>
Char* skipTo(Char* p, unsigned classes) {
  while (!is(*p, classes)) {
    ++p;
  }
  return p;
}

// First byte at or after p, or e, that is no white space.
template <typename Char>
Char* skipSpace(Char* p, const char* e) {
  while (p != e && isSpace(*p)) {
    ++p;
  }
  return p;
}

// Whether [p, e) begins with the text.
inline bool startsWith(const char* p, const char* e, std::string_view text) {
  return static_cast<std::size_t>(e - p) >= text.size() &&
         std::memcmp(p, text.data(), text.size()) == 0;
}

// The place behind the first such text in [p, e), or nullptr.
inline const char* behindText(const char* p, const char* e, std::string_view text) {
  const std::size_t place = std::string_view(p, static_cast<std::size_t>(e - p)).find(text);
  return place == std::string_view::npos ? nullptr : p + place + text.size();
}

// Whether `length` bytes are equal, four at a time: names are too short for a call of memcmp.
inline bool sameBytes(const char* a, const char* b, std::size_t length) {
  const auto word = [](const char* p) {
    std::uint32_t value = 0;
    std::memcpy(&value, p, sizeof(value));
    return value;
  };
  if (length < sizeof(std::uint32_t)) {
    while (length != 0 && a[length - 1] == b[length - 1]) {
      --length;
    }
    return length == 0;
  }
  const char* const last = a + length - sizeof(std::uint32_t);
  for (; a < last; a += sizeof(std::uint32_t), b += sizeof(std::uint32_t)) {
    if (word(a) != word(b)) {
      return false;
    }
  }
  return word(last) == word(b - (a - last));
}

}  // namespace onu::xml::internal
