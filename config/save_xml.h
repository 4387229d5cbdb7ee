#pragma once

#include "xml/xml.h"

namespace onu {

// Replaces the whole content of the file at `path` by the text of `document`, which stays the
// caller's. The text is written over the old one at once, then the file is cut to its length.
// Reports nothing: a file that cannot be opened, or has no room for a longer text, keeps what it
// holds; one whose writing fails half-way has the new text up to there and the old one behind it.
void saveXml(const char* path, const xml::XmlRoot* document);

}  // namespace onu
