// Finding the next byte of interest, 16 at a time where the processor can. Reads [p, e) only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace xml::internal {

inline bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

// Each set is what ends one kind of text: `has` tells for one byte, `hits` for 16. The NUL is in
// those that read the input, since it ends the data.
#if defined(__SSE2__)
using Bytes = __m128i;
inline Bytes same(Bytes v, char c) { return _mm_cmpeq_epi8(v, _mm_set1_epi8(c)); }
inline Bytes upTo(Bytes v, char c) { return same(_mm_subs_epu8(v, _mm_set1_epi8(c)), '\0'); }
// Either of two bytes that differ in one bit.
inline Bytes sameBut(Bytes v, char c, char bit) {
  return same(_mm_or_si128(v, _mm_set1_epi8(bit)), static_cast<char>(c | bit));
}
inline Bytes either(Bytes a, Bytes b) { return _mm_or_si128(a, b); }
inline Bytes load16(const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline unsigned bits(Bytes v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); }
#define XML_HITS(expression) \
  static Bytes hits(Bytes v) { return expression; }
#else
#define XML_HITS(expression)
#endif

struct ContentEnd {
  static bool has(char c) { return c == '<' || c == '&' || c == '\r' || c == '\0'; }
  XML_HITS(either(either(same(v, '<'), same(v, '&')), either(same(v, '\r'), same(v, '\0'))))
};

struct EntityEnd {
  static bool has(char c) { return c == '%' || c == '\r'; }
  XML_HITS(either(same(v, '%'), same(v, '\r')))
};

struct MarkupOrEnd {
  static bool has(char c) { return c == '<' || c == '\0'; }
  XML_HITS(either(same(v, '<'), same(v, '\0')))
};

// Bytes up to the blank include all white space, and more.
struct NameEnd {
  static bool has(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '/' || c == '>' || c == '=';
  }
  XML_HITS(either(either(upTo(v, ' '), same(v, '=')), either(same(v, '/'), same(v, '>'))))
};

template <char kQuote>
struct ValueEnd {
  static bool has(char c) { return c == kQuote || c == '&' || static_cast<unsigned char>(c) < ' '; }
  XML_HITS(either(either(same(v, kQuote), same(v, '&')), upTo(v, '\x1f')))
};

template <char kOne>
struct OneOrEnd {
  static bool has(char c) { return c == kOne || c == '\0'; }
  XML_HITS(either(same(v, kOne), same(v, '\0')))
};

#if defined(__SSE2__)
// A bit for each of 32 bytes that is in the set.
template <typename Set>
inline uint64_t hits32(Bytes first, Bytes second) {
  return uint64_t{bits(Set::hits(first))} | uint64_t{bits(Set::hits(second))} << 16;
}
#endif

// First byte of the set at or after p, or e.
template <typename Set>
inline char* find(char* p, const char* e) {
#if defined(__SSE2__)
  while (e - p >= 16) {
    unsigned mask = bits(Set::hits(load16(p)));
    if (mask != 0) return p + __builtin_ctz(mask);
    p += 16;
  }
#endif
  while (p != e && !Set::has(*p)) ++p;
  return p;
}

// Whether [p, e) begins with `length` bytes of `text`.
inline bool startsWith(const char* p, const char* e, const char* text, size_t length) {
  return static_cast<size_t>(e - p) >= length && std::memcmp(p, text, length) == 0;
}

// The place behind the first `text` in [p, e), or NULL.
inline const char* afterText(const char* p, const char* e, const char* text, size_t length) {
  for (; static_cast<size_t>(e - p) >= length; ++p) {
    if (std::memcmp(p, text, length) == 0) return p + length;
  }
  return nullptr;
}

// First place at or after p where `text` (`length` bytes, the first kFirst) stands, or NULL when
// the data ends before.
template <char kFirst>
inline char* findText(char* p, const char* e, const char* text, size_t length) {
  for (;; ++p) {
    p = find<OneOrEnd<kFirst>>(p, e);
    if (p == e || *p == '\0') return nullptr;
    if (startsWith(p, e, text, length)) return p;
  }
}

inline char* skipSpace(char* p, const char* e) {
  while (p != e && isSpace(*p)) ++p;
  return p;
}

// The first 8 bytes of a name, padded with zeros, as a number for comparing. Reads [name, e) only.
inline uint64_t nameKey(const char* name, size_t length, const char* e) {
  uint64_t key = 0;
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  if (e - name >= static_cast<ptrdiff_t>(sizeof(key))) {
    std::memcpy(&key, name, sizeof(key));
    unsigned surplus = length < sizeof(key) ? 64 - 8 * static_cast<unsigned>(length) : 0;
    return length == 0 ? 0 : key << surplus >> surplus;
  }
#endif
  for (size_t i = 0; i != length && i != sizeof(key); ++i) {
    key |= uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
  }
  return key;
}

// Whether `length` bytes at a and b, which comes later in [.., e), are equal.
inline bool equalBytes(const char* a, const char* b, size_t length, const char* e) {
#if defined(__SSE2__)
  if (length <= 16 && e - b >= 16) {
    unsigned differ = ~bits(_mm_cmpeq_epi8(load16(a), load16(b)));
    return (differ & ((1u << length) - 1)) == 0;
  }
#endif
  return static_cast<size_t>(e - b) >= length && std::memcmp(a, b, length) == 0;
}

}  // namespace xml::internal
