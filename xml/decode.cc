#include "xml/decode.h"

#include <cstdlib>
#include <cstring>

#include "xml/memory.h"
#include "xml/scan.h"

namespace onu::xml::internal {

namespace {

// Value of a digit in the base, negative for anything else.
int digitValue(char c, int base) {
  int value = c - '0';
  if (c > '9') {
    value = (c | 0x20) < 'a' ? -1 : (c | 0x20) - 'a' + 10;
  }
  return value < base ? value : -1;
}

// Drops spaces at both ends and all but one of each run. Returns the new length.
std::size_t collapseSpaces(char* text, std::size_t length) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < length; ++i) {
    if (text[i] != ' ' || (kept != 0 && text[kept - 1] != ' ')) {
      text[kept++] = text[i];
    }
  }
  return kept != 0 && text[kept - 1] == ' ' ? kept - 1 : kept;
}

}  // namespace

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

Decoder::~Decoder() { std::free(heap_); }

Decoded Decoder::decode(char* text, char* odd, std::size_t length, Mode mode) {
  mode_ = mode;
  movesLines_ = false;
  stops_ = mode == Mode::kContent ? kContentStop : kValueStop;
  start_ = text;
  write_ = read_ = odd;
  end_ = text + length;
  const char sign = mode == Mode::kEntity ? '%' : '&';
  const bool isAttribute = mode == Mode::kAttribute || mode == Mode::kTokens;
  while (copyPlain()) {
    const char c = *read_;
    if (c == sign) {
      reference();
    } else if (c == '\r' || (isAttribute && isSpace(c))) {
      lineEnd();
    } else {
      *write_++ = *read_++;
    }
  }
  auto written = static_cast<std::size_t>(write_ - start_);
  if (mode == Mode::kTokens) {
    written = collapseSpaces(start_, written);
  }
  const bool inPlace = start_ == text;
  if (inPlace) {
    start_[written] = '\0';
  }
  return {start_, written, inPlace};
}

// Copies up to a byte that may need decoding. False when that was all.
bool Decoder::copyPlain() {
  const char* const end = end_;
  const unsigned stops = stops_;
  char* read = read_;
  char* write = write_;
  for (; read != end && !is(*read, stops); ++read) {
    *write++ = *read;
  }
  read_ = read;
  write_ = write;
  return read != end;
}

void Decoder::lineEnd() {
  const bool isAttribute = mode_ == Mode::kAttribute || mode_ == Mode::kTokens;
  const char c = *read_++;
  movesLines_ = true;
  *write_++ = isAttribute ? ' ' : '\n';
  if (c == '\r' && read_ != end_ && *read_ == '\n') {
    ++read_;
  }
}

// What is unknown or does not fit stays as it is.
void Decoder::reference() {
  const bool isGeneral = mode_ != Mode::kEntity;
  const bool isCharacter = startsWith(read_, end_, "&#");
  if (isCharacter ? characterReference() : isGeneral && predefined()) {
    return;
  }
  const bool isDeclared = entities_ != nullptr && !isCharacter;
  const std::size_t length = isDeclared ? referenceLength(read_, end_) : 0;
  if (length != 0) {
    const EntityTable& table = isGeneral ? entities_->general : entities_->parameter;
    const Entity* const entity = table.find({read_ + 1, length - 1});
    if (entity != nullptr && entities_->spend(entity->value.size())) {
      replace(length, entity->value);
      return;
    }
  }
  *write_++ = *read_++;
}

bool Decoder::characterReference() {
  char* p = read_ + 2;
  const bool isHexadecimal = p != end_ && *p == 'x';
  const int base = isHexadecimal ? 16 : 10;
  p += isHexadecimal ? 1 : 0;
  std::uint64_t value = 0;
  for (; p != end_; ++p) {
    const int digit = digitValue(*p, base);
    if (digit < 0) {
      break;
    }
    value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
    if (value > 0x7FFFFFFF) {
      return false;
    }
  }
  if (p == end_ || *p != ';' || value == 0) {
    return false;
  }
  movesLines_ = movesLines_ || value == '\n';
  write_ = putUtf8(static_cast<std::uint32_t>(value), write_);
  read_ = p + 1;
  return true;
}

bool Decoder::predefined() {
  static constexpr struct {
    std::string_view name;
    char character;
  } kCharacters[] = {{"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}, {"amp;", '&'}};
  constexpr std::ptrdiff_t kShortest = 4;
  if (end_ - read_ < kShortest) {
    return false;
  }
  for (const auto& entry : kCharacters) {
    if (read_[1] == entry.name[0] && startsWith(read_ + 1, end_, entry.name)) {
      *write_++ = entry.character;
      read_ += 1 + entry.name.size();
      return true;
    }
  }
  return false;
}

void Decoder::replace(std::size_t referenceLength, std::string_view value) {
  movesLines_ = true;
  read_ += referenceLength;
  if (static_cast<std::size_t>(read_ - write_) < value.size()) {
    enlarge(value.size());
  }
  read_ -= value.size();
  std::memcpy(read_, value.data(), value.size());
}

// Widens the gap to `bytes` or more, and so that the next time comes only after as much again.
void Decoder::enlarge(std::size_t bytes) {
  const auto written = static_cast<std::size_t>(write_ - start_);
  const auto rest = static_cast<std::size_t>(end_ - read_);
  const std::size_t capacity = 2 * (written + rest + bytes) + 256;
  auto* const larger = static_cast<char*>(allocate(capacity));
  std::memcpy(larger, start_, written);
  std::memcpy(larger + capacity - rest, read_, rest);
  std::free(heap_);
  heap_ = larger;
  start_ = heap_;
  write_ = heap_ + written;
  end_ = heap_ + capacity;
  read_ = end_ - rest;
}

}  // namespace onu::xml::internal
