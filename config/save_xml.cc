#include "config/save_xml.h"

#include <sys/statvfs.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "frontend/fd.h"

namespace onu {
namespace {

constexpr std::size_t kBlock = 512;  // bytes, the least room that a file system gives to a file

struct Release {
  void operator()(char* text) const { std::free(text); }
};

std::size_t blocks(std::size_t size) { return (size + kBlock - 1) / kBlock; }

// Whether the file can take `size` bytes. Flash file systems cannot reserve room; of those the room
// that is free beside the old text counts.
bool hasRoom(int file, std::size_t size) {
  if (::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0) {
    return true;
  }
  struct statvfs state {};
  return errno == EOPNOTSUPP && ::fstatvfs(file, &state) == 0 &&
         std::uint64_t{state.f_bavail} * state.f_frsize >= size;
}

}  // namespace

void saveXml(const char* path, const xml::XmlRoot* document) {
  std::size_t size = 0;
  const std::unique_ptr<char, Release> text(xml::toXml(&document->xml, &size));

  // A text that needs no further block fits where the one was that it was read from, except on a
  // full flash file system. Of UTF-16 the length in the file is not known here.
  const std::size_t before =
      document->u == nullptr ? static_cast<std::size_t>(document->e - document->s) : 0;
  const Fd file = Fd::open(path, O_WRONLY | O_CREAT);
  if (!file || (blocks(size) > blocks(before) && !hasRoom(file.get(), size))) {
    return;
  }
  // Cut to the new length and not to nothing: a process that is killed in between leaves the old
  // text, less its end where the new one is shorter, and not an empty file. Not cut afterwards:
  // that might cut what another has written since.
  if (::ftruncate(file.get(), static_cast<off_t>(size)) == 0) {
    writeFully(file.get(), {text.get(), size});
  }
}

}  // namespace onu
