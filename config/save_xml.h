#pragma once

#include "xml/xml.h"

namespace onu {

// Replaces the whole content of the file at `path` by the text of `document`, which stays the
// caller's. Reports nothing: a file that cannot be opened, or has no room for a longer text, keeps
// what it holds. The file is empty only between its opening and the one write.
void saveXml(const char* path, const xml::XmlRoot* document);

}  // namespace onu
