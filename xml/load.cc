// Reading input into a buffer that the document then owns.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "xml/xml.h"

namespace onu::xml {

namespace {

constexpr std::size_t kBlock = 1024;

XmlRoot* parseOwned(char* buffer, std::size_t length) {
  XmlRoot* const root = parseStr(buffer, length);
  root->len = -1;
  return root;
}

}  // namespace

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
