// Documents for the tests.
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "xml/document.h"

namespace onu::xml {

// A document with its input, which ends with its heap allocation: whoever reads past it is found.
class Parsed {
 public:
  explicit Parsed(std::string_view text)
      : buffer_(new char[text.size()]),
        document_((text.copy(buffer_.get(), text.size()), parseStr(buffer_.get(), text.size()))) {}

  XmlNode* node() const { return document_.node(); }
  XmlRoot* operator->() const { return document_.get(); }
  std::string error() const { return xml::error(node()); }

 private:
  std::unique_ptr<char[]> buffer_;
  Document document_;
};

inline std::string written(const XmlNode* node) {
  std::size_t length = 0;
  char* text = toXml(node, &length);
  std::string result(text, length);
  std::free(text);
  return result;
}

// The tree in one line, as name{attribute=value;}'text'[child@off child@off].
inline std::string shown(const XmlNode* node) {
  if (node == nullptr || node->name == nullptr) {
    return "none";
  }
  std::string text = node->name;
  for (const char** pair = node->attr; *pair != nullptr; pair += 2) {
    text += (pair == node->attr ? "{" : "") + std::string(pair[0]) + "=" + pair[1] + ";";
  }
  text += node->attr[0] == nullptr ? "" : "}";
  text += std::string("'") + node->txt + "'";
  for (const XmlNode* child = node->child; child != nullptr; child = child->ordered) {
    text += child == node->child ? "[" : " ";
    text += shown(child) + "@" + std::to_string(child->off);
  }
  return text + (node->child == nullptr ? "" : "]");
}

// The children by name, as first,same,same|other: what idx and child walk along.
inline std::string groups(const XmlNode* parent) {
  std::string text;
  for (const XmlNode* first = parent->child; first != nullptr; first = first->sibling) {
    text += text.empty() ? "" : "|";
    for (const XmlNode* same = first; same != nullptr; same = same->next) {
      text += std::string(same == first ? "" : ",") + same->name + same->txt;
    }
  }
  return text;
}

}  // namespace onu::xml
