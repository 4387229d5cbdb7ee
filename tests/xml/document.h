// Documents for the tests.
#pragma once

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "xml/document.h"

// A document with its input, which ends with its heap allocation: whoever reads past it is found.
class Parsed {
 public:
  explicit Parsed(std::string_view text) : buffer_(static_cast<char*>(std::malloc(text.size()))) {
    if (!text.empty()) std::memcpy(buffer_, text.data(), text.size());
    document_.reset(xml::parseStr(buffer_, text.size()));
  }
  Parsed(const Parsed&) = delete;
  Parsed& operator=(const Parsed&) = delete;
  ~Parsed() {
    document_.reset();
    std::free(buffer_);
  }

  xml::XmlNode* node() const { return document_.node(); }
  xml::XmlRoot* operator->() const { return document_.get(); }
  std::string error() const { return xml::error(node()); }

 private:
  char* buffer_;
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
  if (node->attr[0] != nullptr) {
    text += '{';
    for (const char** pair = node->attr; *pair != nullptr; pair += 2) {
      text += std::string(pair[0]) + "=" + pair[1] + ";";
    }
    text += '}';
  }
  text += std::string("'") + node->txt + "'";
  if (node->child == nullptr) return text;
  text += '[';
  for (const xml::XmlNode* child = node->child; child != nullptr; child = child->ordered) {
    text +=
        shown(child) + "@" + std::to_string(child->off) + (child->ordered != nullptr ? " " : "");
  }
  return text + "]";
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
