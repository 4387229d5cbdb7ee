#include "device/status_file.h"

#include <array>

#include "base/fd.h"

namespace onu {

int readStatusFile(const char* path, std::string& text) {
  const Fd file = Fd::open(path, O_RDONLY);
  if (!file) {
    return -1;
  }
  text.clear();
  // The driver prints at most one page, and a file gives less than asked for only at its end: in
  // the common case this is a single read.
  std::array<char, 4096> page;
  ssize_t got = 0;
  do {
    got = ::read(file.get(), page.data(), page.size());
    if (got > 0) {
      text.append(page.data(), static_cast<std::size_t>(got));
    }
  } while (got == static_cast<ssize_t>(page.size()) || (got < 0 && errno == EINTR));
  return 0;
}

}  // namespace onu
