#include "xml/decode.h"

#include <cstdlib>
#include <cstring>

#include "xml/memory.h"
#include "xml/scan.h"
#include "xml/utf8.h"

namespace xml::internal {

namespace {

// Value of a digit in the base, or -1.
int digitValue(char c, int base) {
  int value = -1;
  if (c >= '0' && c <= '9') value = c - '0';
  if (c >= 'a' && c <= 'f') value = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') value = c - 'A' + 10;
  return value < base ? value : -1;
}

// Drops spaces at both ends and all but one of each run. Returns the new length.
size_t collapseSpaces(char* text, size_t length) {
  size_t kept = 0;
  for (size_t i = 0; i < length; ++i) {
    if (text[i] != ' ' || (kept != 0 && text[kept - 1] != ' ')) text[kept++] = text[i];
  }
  return kept != 0 && text[kept - 1] == ' ' ? kept - 1 : kept;
}

bool special(char c, Mode mode) {
  switch (mode) {
    case Mode::kContent:
      return c == '&' || c == '\r';
    case Mode::kEntity:
      return c == '%' || c == '\r';
    default:
      return c == '&' || c == '\r' || c == '\n' || c == '\t';
  }
}

}  // namespace

Decoder::~Decoder() { std::free(heap_); }

Decoded Decoder::decode(char* text, size_t length, Mode mode) {
  start_ = write_ = read_ = text;
  end_ = text + length;
  while (read_ != end_) step(mode);
  auto written = static_cast<size_t>(write_ - start_);
  if (mode == Mode::kTokens) written = collapseSpaces(start_, written);
  bool inPlace = start_ == text;
  if (inPlace) start_[written] = '\0';
  return {start_, written, inPlace};
}

void Decoder::step(Mode mode) {
  char c = *read_;
  if (!special(c, mode)) {
    copyRun(mode);
  } else if (c == '&' || c == '%') {
    reference(mode);
  } else {
    lineEnd(mode);
  }
}

// The sets also stop at bytes of no interest here, which then begin the next run.
void Decoder::copyRun(Mode mode) {
  char* run = read_++;
  switch (mode) {
    case Mode::kContent:
      read_ = find<ContentEnd>(read_, end_);
      break;
    case Mode::kEntity:
      read_ = find<EntityEnd>(read_, end_);
      break;
    default:
      read_ = find<ValueEnd<'"'>>(read_, end_);
  }
  auto length = static_cast<size_t>(read_ - run);
  if (write_ != run) std::memmove(write_, run, length);
  write_ += length;
}

void Decoder::lineEnd(Mode mode) {
  bool attribute = mode == Mode::kAttribute || mode == Mode::kTokens;
  char c = *read_++;
  *write_++ = attribute ? ' ' : '\n';
  if (c == '\r' && read_ != end_ && *read_ == '\n') ++read_;
}

// What is unknown or does not fit stays as it is.
void Decoder::reference(Mode mode) {
  if (mode != Mode::kEntity && end_ - read_ > 1 && read_[1] == '#') {
    if (characterReference()) return;
  } else if (size_t length = referenceLength(read_, end_); length != 0) {
    if (mode != Mode::kEntity && predefined(read_ + 1, length - 1)) return;
    const EntityTable* table = nullptr;
    if (entities_ != nullptr) {
      table = mode == Mode::kEntity ? &entities_->parameter : &entities_->general;
    }
    const Entity* entity = table == nullptr ? nullptr : table->find(read_ + 1, length - 1);
    if (entity != nullptr && entities_->spend(entity->valueLength)) return replace(length, *entity);
  }
  *write_++ = *read_++;
}

bool Decoder::characterReference() {
  char* p = read_ + 2;
  int base = 10;
  if (p != end_ && *p == 'x') {
    base = 16;
    ++p;
  }
  uint64_t value = 0;
  for (; p != end_; ++p) {
    int digit = digitValue(*p, base);
    if (digit < 0) break;
    value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
    if (value > 0x7FFFFFFF) return false;
  }
  if (p == end_ || *p != ';' || value == 0) return false;
  write_ = putUtf8(static_cast<uint32_t>(value), write_);
  read_ = p + 1;
  return true;
}

bool Decoder::predefined(const char* name, size_t length) {
  static constexpr struct {
    size_t length;
    char name[6];
    char character;
  } kCharacters[] = {
      {3, "lt;", '<'}, {3, "gt;", '>'}, {5, "quot;", '"'}, {5, "apos;", '\''}, {4, "amp;", '&'}};
  for (const auto& entry : kCharacters) {
    if (length == entry.length && std::memcmp(name, entry.name, length) == 0) {
      *write_++ = entry.character;
      read_ += length + 1;
      return true;
    }
  }
  return false;
}

void Decoder::replace(size_t referenceLength, const Entity& entity) {
  read_ += referenceLength;
  if (entity.valueLength == 0) return;
  if (static_cast<size_t>(read_ - write_) < entity.valueLength) enlarge(entity.valueLength);
  read_ -= entity.valueLength;
  std::memcpy(read_, entity.value, entity.valueLength);
}

// Widens the gap to `bytes` or more, and so that the next time comes only after as much again.
void Decoder::enlarge(size_t bytes) {
  auto written = static_cast<size_t>(write_ - start_);
  auto rest = static_cast<size_t>(end_ - read_);
  size_t need = written + rest + bytes;
  bool here = start_ == heap_;
  if (here && capacity_ >= 2 * need) {
    std::memmove(heap_ + capacity_ - rest, read_, rest);
  } else {
    size_t capacity = 2 * need + 256;
    auto* larger = static_cast<char*>(allocate(capacity));
    if (written != 0) std::memcpy(larger, start_, written);
    if (rest != 0) std::memcpy(larger + capacity - rest, read_, rest);
    std::free(heap_);
    heap_ = larger;
    capacity_ = capacity;
  }
  start_ = heap_;
  write_ = heap_ + written;
  end_ = heap_ + capacity_;
  read_ = end_ - rest;
}

}  // namespace xml::internal
