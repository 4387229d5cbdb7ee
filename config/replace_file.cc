#include "config/replace_file.h"

#include <sys/file.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/message.h"
#include "base/unit_lock.h"

namespace onu {
namespace {

// The new file, beside the one that it replaces and hidden from whatever copies "*.*". Its name is
// fixed, so a killed writer leaves one at the most, and the next writer takes that over. Two
// writers would share it: the holder of the unit's lock is alone with the first name, and those
// that had to go on without the lock take turns at the second one, where a stale file waits for the
// next such.
constexpr const char* kFreshName = ".onu-save";
constexpr const char* kUnlockedFreshName = ".onu-save-unlocked";

// O_SYNC: a write ends when text and length are on the medium, as an fsync behind it would see to,
// which is a system call less. The new name must not lead to a file that is not there yet.
constexpr int kFreshFlags = O_WRONLY | O_CREAT | O_SYNC | O_NOFOLLOW;

constexpr mode_t kPermissions = 07777;

// What a killed writer left goes first, and with it its owner and mode, or the link that it may be.
Fd createFresh(const char* path, mode_t mode) {
  Fd file = Fd::open(path, kFreshFlags | O_EXCL, mode);
  if (!file && errno == EEXIST && ::unlink(path) == 0) {
    file = Fd::open(path, kFreshFlags | O_EXCL, mode);
  }
  return file;
}

// Waits for whoever has the file. By then its name may lead elsewhere or nowhere: that file has
// been renamed into place, nothing may touch it, and the name is tried again.
Fd createFreshInTurn(const char* path, mode_t mode) {
  for (;;) {
    Fd file = Fd::open(path, kFreshFlags, mode);
    if (!file) {
      return file;
    }
    struct stat locked {};
    struct stat named {};
    if (::flock(file.get(), LOCK_EX) != 0 || ::fstat(file.get(), &locked) != 0) {
      return Fd();
    }
    if (::lstat(path, &named) == 0 && named.st_dev == locked.st_dev &&
        named.st_ino == locked.st_ino) {
      return ::ftruncate(file.get(), 0) == 0 ? std::move(file) : Fd();
    }
  }
}

constexpr int kMostLinks = 40;  // in a row, as the kernel has it

// The path that a symbolic link leads to.
std::string linkTarget(const std::string& link) {
  std::array<char, PATH_MAX> text;
  const ssize_t size = ::readlink(link.c_str(), text.data(), text.size());
  const std::string_view target(text.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
  const bool isAbsolute = !target.empty() && target.front() == '/';
  return (isAbsolute ? std::string() : link.substr(0, link.rfind('/') + 1)).append(target);
}

// Whether a file that is written itself would be no better off: there is no more room for that
// either, or the medium fails, and the old text is the only good one.
bool keepsOldText(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO;
}

}  // namespace

ReplaceableFile::ReplaceableFile(const char* path, int flags)
    : target_(path), file_(Fd::open(path, flags | O_NOFOLLOW)) {
  for (int link = 0; !file_ && errno == ELOOP && link < kMostLinks; ++link) {
    target_ = linkTarget(target_);
    file_ = Fd::open(target_.c_str(), flags | O_NOFOLLOW);
  }
  if (file_ && ::fstat(file_.get(), &state_) != 0) {
    file_ = Fd();
  }
  error_ = file_ ? 0 : errno;
}

void ReplaceableFile::replace(std::string_view text) const {
  if (!file_) {
    complain({"cannot save ", target_, ": ", std::strerror(error_)});
    return;
  }
  // Beyond a limit of file sizes (ulimit -f) a write is to fail, not to end the process. The tools
  // that are started later inherit that, and their writes fail likewise.
  std::signal(SIGXFSZ, SIG_IGN);
  bool inPlace = !S_ISREG(state_.st_mode);
  int error = inPlace ? 0 : replaceByNew(text, inPlace);
  if (inPlace) {
    error = writeInPlace(text);
  }
  if (error != 0) {
    complain({"cannot save ", target_, ": ", std::strerror(error)});
  }
}

int ReplaceableFile::replaceByNew(std::string_view text, bool& inPlace) const {
  const bool alone = unitLockHeld();
  std::string path = target_.substr(0, target_.rfind('/') + 1);
  path += alone ? kFreshName : kUnlockedFreshName;
  const mode_t mode = state_.st_mode & kPermissions;
  const Fd fresh = alone ? createFresh(path.c_str(), mode) : createFreshInTurn(path.c_str(), mode);
  bool writable = true;
  if (fresh && takeAttributes(fresh)) {
    writable = writeFully(fresh.get(), text);
    if (writable && ::rename(path.c_str(), target_.c_str()) == 0) {
      return 0;
    }
  }
  const int error = errno;
  if (fresh) {
    ::unlink(path.c_str());
  }
  inPlace = writable && !keepsOldText(error);
  return error;
}

bool ReplaceableFile::takeAttributes(const Fd& fresh) const {
  struct stat given {};
  if (::fstat(fresh.get(), &given) != 0) {
    return false;
  }
  const bool owned = given.st_uid == state_.st_uid && given.st_gid == state_.st_gid;
  if (!owned && ::fchown(fresh.get(), state_.st_uid, state_.st_gid) != 0) {
    return false;
  }
  // A change of the owner has cleared bits of the mode perhaps.
  return (owned && given.st_mode == state_.st_mode) ||
         ::fchmod(fresh.get(), state_.st_mode & kPermissions) == 0;
}

int ReplaceableFile::writeInPlace(std::string_view text) const {
  const Fd file = Fd::open(target_.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  return file && writeFully(file.get(), text) ? 0 : errno;
}

}  // namespace onu
