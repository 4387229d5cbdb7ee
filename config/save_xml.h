#pragma once

#include "config/replace_file.h"
#include "xml/xml.h"

namespace onu {

// Replaces the whole content of the file at `path`, which is created when there is none, by the
// text of `document`, which stays the caller's. Reports nothing to the caller: a file that cannot
// be opened for writing, or for whose new text there is no room, keeps what it holds. Of several
// processes that write at the same time each leaves a whole text, and the last one's stays.
void saveXml(const char* path, const xml::XmlRoot* document);

// The same for a file that has been opened for it.
void saveXml(const ReplaceableFile& file, const xml::XmlRoot* document);

}  // namespace onu
