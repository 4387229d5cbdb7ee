// Checks that a tree holds together, and compares trees. A difference ends the run.
#pragma once

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "xml/document.h"

namespace onu::fuzz {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// What an element says when written: each name once, declared defaults behind.
inline Pairs effectiveAttributes(const xml::XmlRoot& root, const xml::XmlNode& node) {
  Pairs pairs;
  std::set<std::string> names;
  for (const char** pair = node.attr; *pair != nullptr; pair += 2) {
    if (names.insert(pair[0]).second) {
      pairs.emplace_back(pair[0], pair[1]);
    }
  }
  for (const char*** list = root.attr; *list != nullptr; ++list) {
    if (std::strcmp(**list, node.name) != 0) {
      continue;
    }
    for (const char** text = *list + 1; *text != nullptr; text += 3) {
      if (names.insert(text[0]).second) {
        pairs.emplace_back(text[0], text[1]);
      }
    }
  }
  return pairs;
}

// All links of one element's children: order, groups, places in the text.
inline void checkChildren(const xml::XmlNode& node) {
  const std::size_t textLength = std::strlen(node.txt);
  std::size_t inOrder = 0;
  std::size_t off = 0;
  std::set<const xml::XmlNode*> rest;
  for (const xml::XmlNode* child = node.child; child != nullptr; child = child->ordered) {
    REQUIRE(child->parent == &node);
    REQUIRE(child->off >= off && child->off <= textLength);
    off = child->off;
    ++inOrder;
    rest.insert(child);
  }
  REQUIRE(rest.size() == inOrder);
  std::set<std::string> names;
  const xml::XmlNode* first = node.child;
  for (; first != nullptr; first = first->sibling) {
    REQUIRE(names.insert(first->name).second);
    std::size_t groupOff = 0;
    for (const xml::XmlNode* same = first; same != nullptr; same = same->next) {
      REQUIRE(std::strcmp(same->name, first->name) == 0);
      REQUIRE(same->off >= groupOff);
      groupOff = same->off;
      REQUIRE(rest.erase(same) == 1);
    }
  }
  REQUIRE(rest.empty());
}

// The next element of a subtree in document order, nullptr behind the last.
inline const xml::XmlNode* following(const xml::XmlNode* node, const xml::XmlNode* top) {
  if (node->child != nullptr) {
    return node->child;
  }
  while (node != top && node->ordered == nullptr) {
    node = node->parent;
  }
  return node == top ? nullptr : node->ordered;
}

inline void checkTree(const xml::XmlRoot& root) {
  if (root.xml.name == nullptr) {
    return;
  }
  for (const auto* node = &root.xml; node != nullptr; node = following(node, &root.xml)) {
    checkChildren(*node);
    std::size_t texts = 0;
    while (node->attr[texts] != nullptr) {
      ++texts;
    }
    REQUIRE(std::strlen(node->attr[texts + 1]) == texts / 2);
  }
}

inline void compareTrees(const xml::XmlRoot& a, const xml::XmlRoot& b) {
  const auto* left = &a.xml;
  const auto* right = &b.xml;
  while (left != nullptr && right != nullptr) {
    REQUIRE(std::strcmp(left->name, right->name) == 0);
    REQUIRE(std::strcmp(left->txt, right->txt) == 0);
    REQUIRE(left->off == right->off);
    REQUIRE(effectiveAttributes(a, *left) == effectiveAttributes(b, *right));
    REQUIRE((left->child == nullptr) == (right->child == nullptr));
    left = following(left, &a.xml);
    right = following(right, &b.xml);
  }
  REQUIRE(left == right);
}

}  // namespace onu::fuzz
