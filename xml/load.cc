// The ways into a parse: UTF-16 becomes UTF-8 first, files are read into a buffer that the document
// then owns.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "xml/parser.h"

namespace onu::xml {

namespace {

constexpr std::size_t kBlock = 1024;

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

// Converts text that starts with a UTF-16 byte-order mark, of either order, to UTF-8 without one. A
// surrogate without its other half becomes U+FFFD, an odd byte at the end nothing. The caller
// releases the result with free(); nullptr for any other text.
char* utf8FromUtf16(const char* text, std::size_t length, std::size_t* newLength) {
  std::string_view units(text, length);
  const std::string_view mark = units.substr(0, 2);
  if (mark != "\xFE\xFF" && mark != "\xFF\xFE") {
    return nullptr;
  }
  const std::size_t high = mark == "\xFE\xFF" ? 0 : 1;
  units = units.substr(2, (length - 2) / 2 * 2);
  // A unit makes three bytes at most, a pair four.
  auto* const converted = static_cast<char*>(internal::allocate(length / 2 * 3));
  char* to = converted;
  while (!units.empty()) {
    to = internal::putUtf8(takeCharacter(units, high), to);
  }
  *newLength = static_cast<std::size_t>(to - converted);
  return converted;
}

XmlRoot* parseOwned(char* buffer, std::size_t length) {
  XmlRoot* const root = parseStr(buffer, length);
  root->len = -1;
  return root;
}

}  // namespace

XmlRoot* parseStr(char* data, std::size_t length) {
  internal::RootImpl* const root = internal::newRoot(data, length);
  root->u = utf8FromUtf16(data, length, &length);
  if (root->u != nullptr) {
    root->s = root->u;
    root->e = root->s + length;
  }
  internal::Parser(*root).run();
  return root;
}

XmlRoot* parseFile(const char* path) {
  if (path == nullptr) {
    return nullptr;
  }
  const int fd = openat(AT_FDCWD, path, O_RDONLY | O_CLOEXEC);  // musl's open makes two calls of it
  if (fd < 0) {
    return nullptr;
  }
  XmlRoot* const root = parseFd(fd);
  close(fd);
  return root;
}

// A file that cannot be read, or is shorter by now, is as long as what was read; one too large for
// the memory there is counts as empty.
XmlRoot* parseFd(int fd) {
  if (fd < 0) {
    return nullptr;
  }
  struct stat status = {};
  if (fstat(fd, &status) != 0 || status.st_size >= PTRDIFF_MAX) {
    status.st_size = 0;
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  // A byte more, since an allocation of none may look like a failed one.
  auto* const buffer = static_cast<char*>(std::malloc(size + 1));
  const ssize_t length = buffer == nullptr ? 0 : read(fd, buffer, size);
  return parseOwned(buffer, length < 0 ? 0 : static_cast<std::size_t>(length));
}

XmlRoot* parseStream(FILE* stream) {
  if (stream == nullptr) {
    return nullptr;
  }
  char* buffer = nullptr;
  std::size_t length = 0;
  std::size_t capacity = 0;
  std::size_t got = kBlock;
  while (got == kBlock) {
    if (capacity - length < kBlock) {
      capacity = 2 * capacity + kBlock;
      auto* const larger = static_cast<char*>(std::realloc(buffer, capacity));
      if (larger == nullptr) {
        std::free(buffer);
        return nullptr;
      }
      buffer = larger;
    }
    got = std::fread(buffer + length, 1, kBlock, stream);
    length += got;
  }
  return parseOwned(buffer, length);
}

}  // namespace onu::xml
