// Owner of a parsed document.
#pragma once

#include <utility>

#include "xml/xml.h"

namespace onu::xml {

// Holds a document, or none, and ends it with freeDoc. Moves, never copies.
class Document {
 public:
  Document() = default;
  explicit Document(XmlRoot* root) : root_(root) {}
  Document(Document&& other) noexcept : root_(other.release()) {}
  Document& operator=(Document&& other) noexcept {
    reset(other.release());
    return *this;
  }
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document() { freeDoc(root_); }

  explicit operator bool() const { return root_ != nullptr; }
  XmlRoot* get() const { return root_; }
  XmlRoot* operator->() const { return root_; }

  // The root element, nullptr without a document: what every operation takes.
  XmlNode* node() const { return root_ == nullptr ? nullptr : &root_->xml; }

  // Hands the document over; the receiver ends it.
  XmlRoot* release() { return std::exchange(root_, nullptr); }

  void reset(XmlRoot* root = nullptr) { freeDoc(std::exchange(root_, root)); }

 private:
  XmlRoot* root_ = nullptr;
};

}  // namespace onu::xml
