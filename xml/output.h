// A growing heap text with the escapes of XML.
#pragma once

#include <cstring>

#include "xml/memory.h"
#include "xml/scan.h"

namespace xml::internal {

struct ContentEscape {
  static bool has(char c) { return c == '&' || c == '<' || c == '>' || c == '\r' || c == '\0'; }
  XML_HITS(either(either(same(v, '&'), sameBut(v, '<', '<' ^ '>')),
                  either(same(v, '\r'), same(v, '\0'))))
};

struct ValueEscape {
  static bool has(char c) { return ContentEscape::has(c) || c == '"' || c == '\n' || c == '\t'; }
  // Finds all control characters, of which the others are written as they are.
  XML_HITS(either(either(sameBut(v, '&', '&' ^ '"'), sameBut(v, '<', '<' ^ '>')), upTo(v, '\x1f')))
};

struct NameStop {
  static bool has(char c) { return c == '\0'; }
  XML_HITS(same(v, '\0'))
};

// The text under construction. Where it ends so far, `at`, is the writer's to carry from call to
// call: kept here it would be stored and loaded again around every byte written.
class Output {
 public:
  static constexpr size_t kRoom = 24;

  explicit Output(size_t capacity)
      : data_(static_cast<char*>(allocate(capacity))), end_(data_ + capacity) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  char* start() const { return data_; }
  size_t size(const char* at) const { return static_cast<size_t>(at - data_); }

  // Makes room for `bytes` at `at`, which may move.
  char* room(char* at, size_t bytes) {
    return static_cast<size_t>(end_ - at) < bytes ? grow(at, bytes) : at;
  }
  char* put(char* at, const char* text, size_t length) {
    at = room(at, length);
    std::memcpy(at, text, length);
    return at + length;
  }

  // Writes a NUL-terminated text, of which `readable` bytes (its NUL at least) can be read, with
  // what is in Set as references. Needs room for 16 bytes, and leaves room for as many as kRoom
  // behind it.
  template <typename Set>
  char* put(char* at, const char* text, size_t readable) {
#if defined(__SSE2__)
    if (readable >= 16) {
      Bytes v = load16(text);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v);
      unsigned hits = bits(Set::hits(v));
      if (hits != 0) {
        int run = __builtin_ctz(hits);
        if (text[run] == '\0') return room(at + run, kRoom);
      }
    }
#endif
    return room(putPart<Set>(at, &text, readable, readable), kRoom);
  }

  // The same with at most `most` bytes of the text, which is moved on.
  template <typename Set>
  char* putPart(char* at, const char** text, size_t most, size_t readable);

  // The text with a NUL, for the caller to free, in exactly as much memory. Ends the output.
  char* release(char* at);

 private:
  char* grow(char* at, size_t bytes);
  char* putEscape(char* at, char c);

  char* data_;
  char* end_;
};

template <typename Set>
char* Output::putPart(char* at, const char** text, size_t most, size_t readable) {
  constexpr size_t kStep = 16;
  const char* p = *text;
  while (most != 0) {
    at = room(at, kStep);
    size_t run = 0;
#if defined(__SSE2__)
    if (readable >= kStep) {
      Bytes v = load16(p);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v);
      run = static_cast<size_t>(__builtin_ctz(bits(Set::hits(v)) | 1u << kStep));
      if (run > most) run = most;
    }
    bool isTail = readable < kStep;
#else
    bool isTail = true;
#endif
    while (isTail && run != kStep && run != most && !Set::has(p[run])) {
      at[run] = p[run];
      ++run;
    }
    at += run;
    p += run;
    most -= run;
    readable -= run;
    if (run == kStep || most == 0) continue;
    if (*p == '\0') break;
    at = putEscape(at, *p++);
    --most;
    --readable;
  }
  *text = p;
  return at;
}

}  // namespace xml::internal
