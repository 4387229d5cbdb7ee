#pragma once

#include "xml/xml.h"

namespace onu {

// Replaces the whole content of the file at `path` by the text of `document`, which stays the
// caller's: the file gets its length, then all of it in one write. Reports nothing. A file that
// cannot be opened, or for which there is no further room, keeps what it holds; one whose writing
// fails half-way, as it may on a full flash file system, has the new text up to there and the old
// one behind it. Of two processes that write at the same time the later text stands in front; the
// rest of a longer one may follow it until the next write, which the tree leaves out.
void saveXml(const char* path, const xml::XmlRoot* document);

}  // namespace onu
