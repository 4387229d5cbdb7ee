#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <utility>

namespace onu {

// An open file descriptor; closes itself. Move-only.
class Fd {
 public:
  Fd() = default;
  // Takes over `fd`; negative means none.
  explicit Fd(int fd) : fd_(fd) {}
  Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  ~Fd() {
    if (fd_ >= 0) {
      ::close(fd_);
    }
  }

  // Opens `path` close-on-exec (requests start shells) and, even where the web server has closed a
  // standard stream, never as descriptor 0 to 2: a reply must not end up in a settings file. The
  // result is false when the file cannot be opened; errno says why.
  static Fd open(const char* path, int flags, mode_t mode = 0666) {
    // After an open with O_CLOEXEC musl would set the flag once more, for kernels of 2007.
    Fd file(::openat(AT_FDCWD, path, flags | O_CLOEXEC, mode));
    if (file && file.fd_ <= STDERR_FILENO) {
      return Fd(::fcntl(file.fd_, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    }
    return file;
  }

  explicit operator bool() const { return fd_ >= 0; }
  int get() const { return fd_; }

 private:
  int fd_ = -1;
};

// Reads up to `size` bytes, past interruptions and the short reads of a pipe. Returns the number of
// bytes read, less than `size` only at the end of the file or after an error.
inline std::size_t readFully(int fd, char* data, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got = ::read(fd, data + done, size - done);
    if (got > 0) {
      done += static_cast<std::size_t>(got);
    } else if (got == 0 || errno != EINTR) {
      break;
    }
  }
  return done;
}

// Writes all of `data`; false after an error, with part of it written perhaps.
inline bool writeFully(int fd, std::string_view data) {
  while (!data.empty()) {
    const ssize_t put = ::write(fd, data.data(), data.size());
    if (put > 0) {
      data.remove_prefix(static_cast<std::size_t>(put));
    } else if (put == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace onu
