#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "base/fd.h"

namespace onu {

// A file whose whole text is to be replaced, so that a reader, a killed writer or a power cut finds
// the old text or the new one, never anything else.
class ReplaceableFile {
 public:
  // Opens the file that `path` leads to. `flags` are those of open(2) and must allow writing;
  // nothing is truncated.
  ReplaceableFile(const char* path, int flags);

  bool isOpen() const { return static_cast<bool>(file_); }
  int fd() const { return file_.get(); }
  off_t size() const { return state_.st_size; }  // in bytes, when it was opened

  // Puts a new file with `text`, and the old one's owner, group and mode, into its place, once it
  // is on the medium. Where the folder takes no new file, or none of that owner, or the file is a
  // mount point or none of text at all, the text is written into the file itself, which then has no
  // old text to keep. Where there is no room for a second text, or writing it fails, the file keeps
  // the old one; the reason goes to standard error, as for a file that is not open.
  void replace(std::string_view text) const;

 private:
  // Both return 0 or an error number. `inPlace` tells whether writing the file itself may do
  // better.
  int replaceByNew(std::string_view text, bool& inPlace) const;
  int writeInPlace(std::string_view text) const;
  bool takeAttributes(const Fd& fresh) const;

  std::string target_;  // of the file itself, behind any symbolic link
  Fd file_;
  int error_ = 0;  // why it is not open
  struct stat state_ {};
};

}  // namespace onu
