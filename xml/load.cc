// Reading input into a buffer that the document then owns.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "xml/xml.h"

namespace xml {

namespace {

constexpr size_t kBlock = 1024;

XmlRoot* parseOwned(char* buffer, size_t length) {
  XmlRoot* root = parseStr(buffer, length);
  root->len = -1;
  return root;
}

}  // namespace

XmlRoot* parseFile(const char* path) {
  if (path == nullptr) return nullptr;
  int fd = openat(AT_FDCWD, path, O_RDONLY | O_CLOEXEC);  // musl's open makes two calls of it
  if (fd < 0) return nullptr;
  XmlRoot* root = parseFd(fd);
  close(fd);
  return root;
}

// A file that cannot be read, or is shorter by now, is as long as what was read; one too large for
// the memory there is counts as empty.
XmlRoot* parseFd(int fd) {
  if (fd < 0) return nullptr;
  struct stat status = {};
  if (fstat(fd, &status) != 0 || status.st_size >= PTRDIFF_MAX) status.st_size = 0;
  auto size = static_cast<size_t>(status.st_size);
  auto* buffer = static_cast<char*>(std::malloc(size + 1));
  ssize_t length = buffer == nullptr ? 0 : read(fd, buffer, size);
  return parseOwned(buffer, length < 0 ? 0 : static_cast<size_t>(length));
}

XmlRoot* parseStream(FILE* stream) {
  if (stream == nullptr) return nullptr;
  char* buffer = nullptr;
  size_t length = 0;
  size_t capacity = 0;
  size_t got = kBlock;
  while (got == kBlock) {
    if (capacity - length < kBlock) {
      capacity = 2 * capacity + kBlock;
      auto* larger = static_cast<char*>(std::realloc(buffer, capacity));
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

}  // namespace xml
