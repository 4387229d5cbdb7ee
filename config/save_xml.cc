#include "config/save_xml.h"

#include <sys/statvfs.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "frontend/fd.h"

namespace onu {
namespace {

struct Release {
  void operator()(char* text) const { std::free(text); }
};

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

  // A text no longer than the one it was read from fits where that one was. A longer one has its
  // room reserved while the old text is still there.
  const bool grows = document->e - document->s < static_cast<std::ptrdiff_t>(size);
  const Fd file = Fd::open(path, O_WRONLY | O_CREAT | (grows ? 0 : O_TRUNC));
  if (!file) {
    return;
  }
  if (grows && (!hasRoom(file.get(), size) || ::ftruncate(file.get(), 0) != 0)) {
    return;
  }
  writeFully(file.get(), {text.get(), size});
}

}  // namespace onu
