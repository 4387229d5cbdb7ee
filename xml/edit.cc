// Changing the tree.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "xml/memory.h"

namespace onu::xml {

using internal::kOwnAttributes;
using internal::release;

namespace {

std::size_t countPairs(const XmlNode& node) {
  std::size_t texts = 0;
  while (node.attr[texts] != nullptr) texts += 2;
  return texts / 2;
}

// Gives the node, of `count` attributes, an array and owner text of its own with room for `room`.
// Returns the owner text.
char* ownAttributes(XmlNode& node, std::size_t count, std::size_t room) {
  bool owned = (node.flags & kOwnAttributes) != 0;
  const char** old = node.attr;
  auto* array = static_cast<const char**>(
      internal::reallocate(owned ? old : nullptr, (2 * room + 2) * sizeof(*old)));
  if (!owned) std::memcpy(array, old, (2 * count + 2) * sizeof(*old));
  const char* oldOwners = array[2 * count + 1];
  auto* owners = static_cast<char*>(
      internal::reallocate(owned ? const_cast<char*>(oldOwners) : nullptr, room + 1));
  if (!owned) std::memcpy(owners, oldOwners, count + 1);
  array[2 * count + 1] = owners;
  node.attr = array;
  node.flags |= kOwnAttributes;
  return owners;
}

void appendPair(XmlNode& node, std::size_t count, const char* name, const char* value,
                bool copies) {
  char* owners = ownAttributes(node, count, count + 1);
  owners[count] = copies ? internal::kBorrowed | internal::kNameOwned | internal::kValueOwned
                         : internal::kBorrowed;
  owners[count + 1] = '\0';
  const char** pair = node.attr + 2 * count;
  pair[0] = name;
  pair[1] = value;
  pair[2] = nullptr;
  pair[3] = owners;
}

// The stored name stays, so that a copy of it is released at once.
void replaceValue(XmlNode& node, std::size_t count, std::size_t i, const char* name,
                  const char* value, bool copies) {
  if (copies && name != node.attr[2 * i]) {
    release(name);
  }
  if (value == node.attr[2 * i + 1]) {
    return;
  }
  char owner = node.attr[2 * count + 1][i];
  bool owned = (owner & internal::kValueOwned) != 0;
  if (owned) {
    release(node.attr[2 * i + 1]);
  }
  if (owned != copies) {
    ownAttributes(node, count, count)[i] = static_cast<char>(owner ^ internal::kValueOwned);
  }
  node.attr[2 * i + 1] = value;
}

// An element may carry a name twice: all its pairs go. The name given may be a stored one, so it is
// released last, and once.
void removePairs(XmlNode& node, std::size_t count, const char* name, bool copies) {
  char* owners = ownAttributes(node, count, count);
  std::size_t kept = 0;
  for (std::size_t i = 0; i != count; ++i) {
    const char** pair = node.attr + 2 * i;
    char owner = owners[i];
    if (std::strcmp(pair[0], name) != 0) {
      std::copy_n(pair, 2, node.attr + 2 * kept);
      owners[kept++] = owner;
      continue;
    }
    bool nameOwned = (owner & internal::kNameOwned) != 0;
    if (pair[0] == name) {
      copies = nameOwned;
    } else if (nameOwned) {
      release(pair[0]);
    }
    if ((owner & internal::kValueOwned) != 0) {
      release(pair[1]);
    }
  }
  if (copies) {
    release(name);
  }
  node.attr[2 * kept] = nullptr;
  node.attr[2 * kept + 1] = owners;
  owners[kept] = '\0';
  if (kept != 0) {
    return;
  }
  std::free(owners);
  std::free(node.attr);
  node.attr = internal::noAttributes();
  node.flags &= static_cast<std::uint8_t>(~kOwnAttributes);
}

// `firsts` is a parent's list of first elements by name, `ordered` its children in document order.
// The first list keeps that order too, which makes the first child the head of both.
void addFirst(XmlNode* ordered, XmlNode** firsts, XmlNode* node) {
  for (XmlNode* at = ordered; at != node; at = at->ordered) {
    if (at == *firsts) {
      firsts = &at->sibling;
    }
  }
  node->sibling = *firsts;
  *firsts = node;
}

void removeFirst(XmlNode** firsts, XmlNode* node) {
  while (*firsts != node) {
    firsts = &(*firsts)->sibling;
  }
  *firsts = node->sibling;
  node->sibling = nullptr;
}

// Takes a node out of a list linked by `link`. False when it is not there.
bool removeFrom(XmlNode** list, XmlNode* XmlNode::*link, const XmlNode* node) {
  while (*list != nullptr && *list != node) {
    list = &((*list)->*link);
  }
  if (*list == nullptr) {
    return false;
  }
  *list = node->*link;
  return true;
}

// Puts a node into a list linked by `link`, behind all that stand no later in the parent's text.
void insertByOffset(XmlNode** list, XmlNode* XmlNode::*link, XmlNode* node) {
  while (*list != nullptr && (*list)->off <= node->off) {
    list = &((*list)->*link);
  }
  node->*link = *list;
  *list = node;
}

}  // namespace

XmlNode* setText(XmlNode* node, const char* text) {
  if (node == nullptr || text == node->txt) {
    return node;
  }
  if ((node->flags & (kTextAllocated | internal::kTextInBlock)) == kTextAllocated) {
    release(node->txt);
  }
  node->flags &= static_cast<std::uint8_t>(~(kTextAllocated | internal::kTextInBlock));
  node->txt = text == nullptr ? "" : text;
  return node;
}

XmlNode* setAttr(XmlNode* node, const char* name, const char* value) {
  if (node == nullptr || name == nullptr) {
    return node;
  }
  std::size_t count = countPairs(*node);
  std::size_t i = 0;
  while (i != count && std::strcmp(node->attr[2 * i], name) != 0) {
    ++i;
  }
  bool copies = (node->flags & kAttributesAllocated) != 0;
  if (value == nullptr) {
    if (i != count) {
      removePairs(*node, count, name, copies);
    } else if (copies) {
      release(name);
    }
  } else if (i == count) {
    appendPair(*node, count, name, value, copies);
  } else {
    replaceValue(*node, count, i, name, value, copies);
  }
  return node;
}

XmlNode* addChild(XmlNode* parent, const char* name, std::size_t off) {
  if (parent == nullptr || name == nullptr) {
    return nullptr;
  }
  XmlNode* const node =
      internal::newNode(*internal::rootOf(parent), parent, name, internal::noAttributes(), off);
  XmlNode* sameName = child(parent, name);
  XmlNode* firsts = parent->child;
  insertByOffset(&parent->child, &XmlNode::ordered, node);
  if (sameName != nullptr && sameName->off <= off) {
    insertByOffset(&sameName, &XmlNode::next, node);
    return node;
  }
  if (sameName != nullptr) {
    removeFirst(&firsts, sameName);
  }
  node->next = sameName;
  addFirst(parent->child, &firsts, node);
  return node;
}

XmlNode* cut(XmlNode* node) {
  if (node == nullptr || node->parent == nullptr) {
    return node;
  }
  XmlNode* firsts = node->parent->child;
  XmlNode* sameName = child(node->parent, node->name);
  if (removeFrom(&node->parent->child, &XmlNode::ordered, node)) {
    internal::rootOf(node)->loose.push_back(node);
    if (sameName != node) {
      removeFrom(&sameName, &XmlNode::next, node);
    } else {
      removeFirst(&firsts, node);
      if (node->next != nullptr) {
        addFirst(node->parent->child, &firsts, node->next);
      }
    }
  }
  node->next = node->sibling = node->ordered = nullptr;
  return node;
}

}  // namespace onu::xml
