#include "config/save_xml.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "base/fd.h"
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

bool takeAttributes(const Fd& fresh, const struct stat& old) {
  struct stat given {};
  if (::fstat(fresh.get(), &given) != 0) {
    return false;
  }
  const bool owned = given.st_uid == old.st_uid && given.st_gid == old.st_gid;
  if (!owned && ::fchown(fresh.get(), old.st_uid, old.st_gid) != 0) {
    return false;
  }
  // A change of the owner has cleared bits of the mode perhaps.
  return (owned && given.st_mode == old.st_mode) ||
         ::fchmod(fresh.get(), old.st_mode & kPermissions) == 0;
}

// Whether a file that is written itself would be no better off: there is no more room for that
// either, or the medium fails, and the old text is the only good one.
bool keepsOldText(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO;
}

void complainOfSave(const std::string& path, int error) {
  complain({"cannot save ", path, ": ", std::strerror(error)});
}

// The two below return 0 or an error number.

int writeInPlace(const std::string& path, std::string_view text) {
  const Fd file = Fd::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  return file && writeFully(file.get(), text) ? 0 : errno;
}

int replaceByNew(const std::string& path, const struct stat& old, std::string_view text) {
  const bool alone = unitLockHeld();
  std::string name = path.substr(0, path.rfind('/') + 1);
  name += alone ? kFreshName : kUnlockedFreshName;
  const mode_t mode = old.st_mode & kPermissions;
  Fd fresh = alone ? createFresh(name.c_str(), mode) : createFreshInTurn(name.c_str(), mode);
  bool writable = true;
  if (fresh && takeAttributes(fresh, old)) {
    writable = writeFully(fresh.get(), text);
    if (writable && ::rename(name.c_str(), path.c_str()) == 0) {
      return 0;
    }
  }
  const int error = errno;
  if (fresh) {
    ::unlink(name.c_str());
    fresh = Fd();  // its room is free again
  }
  return writable && !keepsOldText(error) ? writeInPlace(path, text) : error;
}

// The path that a symbolic link leads to.
std::string linkTarget(const std::string& link) {
  std::array<char, PATH_MAX> text;
  const ssize_t size = ::readlink(link.c_str(), text.data(), text.size());
  const std::string_view target(text.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
  const bool isAbsolute = !target.empty() && target.front() == '/';
  return (isAbsolute ? std::string() : link.substr(0, link.rfind('/') + 1)).append(target);
}

struct Release {
  void operator()(char* text) const { std::free(text); }
};

}  // namespace

bool OpenSettings::open(const char* path, int flags) {
  file = Fd::open(path, flags | O_NOFOLLOW);
  if (file && ::fstat(file.get(), &state) != 0) {
    file = Fd();
  }
  return static_cast<bool>(file);
}

void saveXml(const char* path, const xml::XmlRoot* document) {
  constexpr int kMostLinks = 40;  // in a row, as the kernel has it
  constexpr int kFlags = O_WRONLY | O_CREAT;
  std::string target = path;  // the file itself, behind any symbolic link
  OpenSettings opened;
  for (int link = 0; !opened.open(target.c_str(), kFlags); ++link) {
    if (errno != ELOOP || link == kMostLinks) {
      return complainOfSave(target, errno);
    }
    target = linkTarget(target);
  }
  saveXml(target.c_str(), opened, document);
}

void saveXml(const char* path, const OpenSettings& opened, const xml::XmlRoot* document) {
  std::size_t size = 0;
  const std::unique_ptr<char, Release> text(xml::toXml(&document->xml, &size));
  // Beyond a limit of file sizes (ulimit -f) a write is to fail, not to end the process. The tools
  // that are started later inherit that, and their writes fail likewise.
  std::signal(SIGXFSZ, SIG_IGN);
  const bool isFile = S_ISREG(opened.state.st_mode);
  const std::string_view all(text.get(), size);
  if (const int error = isFile ? replaceByNew(path, opened.state, all) : writeInPlace(path, all)) {
    complainOfSave(path, error);
  }
}

}  // namespace onu
