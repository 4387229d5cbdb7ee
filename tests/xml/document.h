// Documents for the tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
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

 private:
  std::unique_ptr<char[]> buffer_;
  Document document_;
};

// So many copies of the text, with their numbers from 0 in place of every '#'.
inline std::string numbered(int count, std::string_view text) {
  std::string result;
  for (int i = 0; i != count; ++i) {
    for (const char c : text) {
      result += c == '#' ? std::to_string(i) : std::string(1, c);
    }
  }
  return result;
}

inline std::string written(const XmlNode* node) {
  std::size_t length = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(toXml(node, &length), &std::free);
  EXPECT_EQ(std::strlen(text.get()), length);
  return text.get();
}

// The tree in one line, as name(attribute=value)'text'[child@off][child@off].
inline std::string shown(const XmlNode* node) {
  if (node == nullptr || node->name == nullptr) {
    return "none";
  }
  std::string text = node->name;
  for (const char** pair = node->attr; *pair != nullptr; pair += 2) {
    text += std::string("(") + pair[0] + "=" + pair[1] + ")";
  }
  text += std::string("'") + node->txt + "'";
  for (const XmlNode* child = node->child; child != nullptr; child = child->ordered) {
    text += "[" + shown(child) + "@" + std::to_string(child->off) + "]";
  }
  return text;
}

// The children by name, as first,same,same|other|: what idx and child walk along.
inline std::string groups(const XmlNode* parent) {
  std::string text;
  for (const XmlNode* first = parent->child; first != nullptr; first = first->sibling) {
    for (const XmlNode* same = first; same != nullptr; same = same->next) {
      text += std::string(same->name) + same->txt + (same->next == nullptr ? "|" : ",");
    }
  }
  return text;
}

struct Case {
  std::string_view text;
  std::string want;
  std::string error = {};
  int line = 1;  // of the error
};

// Parses the text of each case behind `before` and compares what `show` makes of the tree.
inline void expectEach(std::initializer_list<Case> cases,
                       std::string (*show)(const XmlNode*) = shown, const char* before = "") {
  for (const auto& [text, want, error, line] : cases) {
    const Parsed document(before + std::string(text));
    const std::string place = "[error near line " + std::to_string(line) + "]: ";
    EXPECT_EQ(show(document.node()), want) << text;
    EXPECT_EQ(xml::error(document.node()), error.empty() ? "" : place + error) << text;
  }
}

}  // namespace onu::xml
