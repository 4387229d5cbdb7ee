#pragma once

#include <sys/stat.h>

#include "base/fd.h"
#include "xml/xml.h"

namespace onu {

// A settings file that is open for writing, and what it was when it was opened.
struct OpenSettings {
  Fd file;
  struct stat state {};

  // False, and `file` none, when the file cannot be opened or looked at; errno says why. Opens
  // nothing behind a symbolic link. `flags` are those of open(2) and must allow writing; nothing is
  // truncated.
  bool open(const char* path, int flags);
};

// Replaces the whole content of the file at `path`, which is created when there is none, by the
// text of `document`, which stays the caller's, so that a reader, a killed writer or a power cut
// finds the old text or the new one, never anything else. Of several processes that write at the
// same time each leaves a whole text, and the last one's stays.
//
// A new file with the old one's owner, group and mode takes its place once it is on the medium;
// behind a symbolic link that is the file it leads to. Where the folder takes no new file, or none
// of that owner, or the file is a mount point or none of text at all, the text is written into the
// file itself, which then has no old text to keep. A file that cannot be opened for writing keeps
// what it holds, and so does one where there is no room for a second text, or writing it fails: the
// caller is told nothing, the reason goes to standard error.
void saveXml(const char* path, const xml::XmlRoot* document);

// The same for a file that has been opened, which saves opening it again.
void saveXml(const char* path, const OpenSettings& opened, const xml::XmlRoot* document);

}  // namespace onu
