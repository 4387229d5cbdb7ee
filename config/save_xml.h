#pragma once

#include "xml/xml.h"

namespace onu {

// Replaces the whole content of the file at `path` by the text of `document`, which stays the
// caller's: the file gets its length, then all of it in one write. Reports nothing. A file that
// cannot be opened, or for which there is no further room, keeps what it holds; one whose writing
// fails half-way, as it may on a full flash file system, has the new text up to there and the old
// one behind it.
void saveXml(const char* path, const xml::XmlRoot* document);

}  // namespace onu
