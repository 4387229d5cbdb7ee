// Documents for the tests.
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "xml/document.h"

// A document with its input, which ends with its heap allocation: whoever reads past it is found.
class Parsed {
 public:
  explicit Parsed(std::string_view text)
      : buffer_(new char[text.size()]),
        document_(
            (text.copy(buffer_.get(), text.size()), xml::parseStr(buffer_.get(), text.size()))) {}

  xml::XmlNode* node() const { return document_.node(); }
  xml::XmlRoot* operator->() const { return document_.get(); }
  std::string error() const { return xml::error(node()); }

 private:
  std::unique_ptr<char[]> buffer_;
  xml::Document document_;
};

inline std::string written(const xml::XmlNode* node) {
  size_t length = 0;
  char* text = xml::toXml(node, &length);
  std::string result(text, length);
  std::free(text);
  return result;
}

// The tree in one line, as name{attribute=value;}'text'[child@off child@off].
inline std::string shown(const xml::XmlNode* node) {
  if (node == nullptr || node->name == nullptr) return "none";
  std::string text = node->name;
  for (const char** pair = node->attr; *pair != nullptr; pair += 2) {
    text += (pair == node->attr ? "{" : "") + std::string(pair[0]) + "=" + pair[1] + ";";
  }
  text += node->attr[0] == nullptr ? "" : "}";
  text += std::string("'") + node->txt + "'";
  for (const xml::XmlNode* child = node->child; child != nullptr; child = child->ordered) {
    text += child == node->child ? "[" : " ";
    text += shown(child) + "@" + std::to_string(child->off);
  }
  return text + (node->child == nullptr ? "" : "]");
}

// The children by name, as first,same,same|other: what idx and child walk along.
inline std::string groups(const xml::XmlNode* parent) {
  std::string text;
  for (const xml::XmlNode* first = parent->child; first != nullptr; first = first->sibling) {
    text += text.empty() ? "" : "|";
    for (const xml::XmlNode* same = first; same != nullptr; same = same->next) {
      text += std::string(same == first ? "" : ",") + same->name + same->txt;
    }
  }
  return text;
}
