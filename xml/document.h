// Owner of a parsed document.
#pragma once

#include <memory>

#include "xml/xml.h"

namespace onu::xml {

struct FreeDoc {
  void operator()(XmlRoot* root) const { freeDoc(root); }
};

// Holds a document, or none, and ends it with freeDoc.
class Document : public std::unique_ptr<XmlRoot, FreeDoc> {
 public:
  using unique_ptr::unique_ptr;

  // The root element, nullptr without a document: what every operation takes.
  XmlNode* node() const { return *this == nullptr ? nullptr : &get()->xml; }
};

}  // namespace onu::xml
