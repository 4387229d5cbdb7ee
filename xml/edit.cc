// Changing the tree.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "xml/memory.h"

namespace onu::xml {

using internal::kBorrowed;
using internal::kNameOwned;
using internal::kOwnAttributes;
using internal::kValueOwned;
using internal::Node;
using internal::release;

namespace {

// Gives the node, of `count` attributes, an array and owner text of its own with room for one more.
// Returns the owner text.
char* ownAttributes(XmlNode& node, std::size_t count) {
  const bool owned = (node.flags & kOwnAttributes) != 0;
  const char** const old = node.attr;
  const char* const oldOwners = old[2 * count + 1];
  auto** const array = static_cast<const char**>(
      internal::reallocate(owned ? old : nullptr, (2 * count + 4) * sizeof(*old)));
  auto* const owners = static_cast<char*>(
      internal::reallocate(owned ? const_cast<char*>(oldOwners) : nullptr, count + 2));
  if (!owned) {
    std::copy_n(old, 2 * count, array);
    std::memcpy(owners, oldOwners, count);
  }
  node.attr = array;
  node.flags |= kOwnAttributes;
  return owners;
}

// Ends the node's own array, of `count` attributes by now.
void endAttributes(XmlNode& node, std::size_t count, char* owners) {
  owners[count] = '\0';
  node.attr[2 * count] = nullptr;
  node.attr[2 * count + 1] = owners;
  if (count == 0) {
    std::free(owners);
    std::free(node.attr);
    node.attr = internal::noAttributes();
    node.flags &= static_cast<std::uint8_t>(~kOwnAttributes);
  }
}

// An element may carry a name twice: all its pairs go. The name given may be a stored one, so it is
// released last, and once.
void removePairs(XmlNode& node, std::size_t count, const char* name, bool copies) {
  char* const owners = ownAttributes(node, count);
  std::size_t kept = 0;
  for (std::size_t i = 0; i != count; ++i) {
    const char** const pair = node.attr + 2 * i;
    const char owner = owners[i];
    if (std::strcmp(pair[0], name) != 0) {
      std::copy_n(pair, 2, node.attr + 2 * kept);
      owners[kept++] = owner;
      continue;
    }
    const bool nameOwned = (owner & kNameOwned) != 0;
    if (pair[0] == name) {
      copies = nameOwned;
    } else if (nameOwned) {
      release(pair[0]);
    }
    if ((owner & kValueOwned) != 0) {
      release(pair[1]);
    }
  }
  if (copies) {
    release(name);
  }
  endAttributes(node, kept, owners);
}

// Sets the i-th of `count` attributes; the last but one is new. The stored name stays, so that a
// copy of it is released at once.
void setPair(XmlNode& node, std::size_t count, std::size_t i, const char* name, const char* value,
             bool copies) {
  char* const owners = ownAttributes(node, count);
  const char** const pair = node.attr + 2 * i;
  if (i == count) {
    owners[i] = static_cast<char>(copies ? kBorrowed | kNameOwned : kBorrowed);
    pair[0] = name;
    pair[1] = nullptr;
    ++count;
  } else if (copies && name != pair[0]) {
    release(name);
  }
  if (value != pair[1]) {
    if ((owners[i] & kValueOwned) != 0) {
      release(pair[1]);
    }
    owners[i] = static_cast<char>(copies ? owners[i] | kValueOwned : owners[i] & ~kValueOwned);
    pair[1] = value;
  }
  endAttributes(node, count, owners);
}

// The two lists that a child is in.
struct Ordered {
  static XmlNode*& next(XmlNode* node) { return node->ordered; }
  static XmlNode*& before(XmlNode* node) { return static_cast<Node*>(node)->before; }
};
struct SameName {
  static XmlNode*& next(XmlNode* node) { return node->next; }
  static XmlNode*& before(XmlNode* node) { return static_cast<Node*>(node)->beforeSame; }
};

// Puts a node behind all that stand no later in the parent's text. `added` is one of the list, near
// which the place may be, or null. Returns the list's head.
template <typename List>
XmlNode* insert(XmlNode* head, XmlNode* node, XmlNode* added) {
  XmlNode* at = head == nullptr || head->off > node->off ? nullptr : List::before(head);
  if (at != nullptr && added != nullptr && List::next(added) != nullptr &&
      List::next(added)->off > node->off) {
    at = added;
  }
  while (at != nullptr && at->off > node->off) {
    at = at == head ? nullptr : List::before(at);
  }
  XmlNode* const behind = at == nullptr ? head : List::next(at);
  List::next(node) = behind;
  if (at != nullptr) {
    List::next(at) = node;
  }
  XmlNode* const newHead = at == nullptr ? node : head;
  List::before(node) = at != nullptr ? at : head != nullptr ? List::before(head) : node;
  List::before(behind != nullptr ? behind : newHead) = node;
  return newHead;
}

// Takes a node out. Returns the list's head.
template <typename List>
XmlNode* remove(XmlNode* head, XmlNode* node) {
  XmlNode* const behind = List::next(node);
  XmlNode* const newHead = node == head ? behind : head;
  if (node != head) {
    List::next(List::before(node)) = behind;
  }
  if (newHead != nullptr) {
    List::before(behind != nullptr ? behind : newHead) = List::before(node);
  }
  return newHead;
}

bool isFirst(XmlNode* node) { return SameName::before(node)->next == nullptr; }

// Where the list of the first elements of each name, whose head is `firsts`, goes on to one of
// them. It keeps document order too, so that the first child is the head of both. Looked for among
// the children before it and from the front of the list, whichever is nearer.
XmlNode** linkTo(XmlNode** firsts, const XmlNode* parent, XmlNode* first, bool isListed) {
  XmlNode** front = firsts;  // null once it cannot tell which of two comes first
  for (XmlNode* child = first; child != parent->child;) {
    child = Ordered::before(child);
    if (isFirst(child)) {
      return &child->sibling;
    }
    if (front != nullptr) {
      if (*front == first || *front == nullptr || (*front)->off > first->off) {
        return front;
      }
      front = isListed || (*front)->off < first->off ? &(*front)->sibling : nullptr;
    }
  }
  return firsts;
}

// The first child of a name, as the document knows it of the parent that was changed last.
XmlNode*& firstNamed(internal::RootImpl& root, const XmlNode* parent, const char* name) {
  if (std::exchange(root.changed, parent) != parent) {
    root.names.clear();
    root.firsts.clear();
    root.added = nullptr;
    for (XmlNode* first = parent->child; first != nullptr; first = first->sibling) {
      root.names.add(first->name);
      root.firsts.push_back(first);
    }
  }
  const std::size_t i = root.names.add(name);
  root.firsts.resize(root.names.size());
  return root.firsts[i];
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
  const bool copies = (node->flags & kAttributesAllocated) != 0;
  std::size_t count = 0;
  std::size_t i = 0;
  for (; node->attr[2 * count] != nullptr; ++count) {
    i += i == count && std::strcmp(node->attr[2 * count], name) != 0 ? 1 : 0;
  }
  if (value != nullptr) {
    setPair(*node, count, i, name, value, copies);
  } else if (i != count) {
    removePairs(*node, count, name, copies);
  } else if (copies) {
    release(name);
  }
  return node;
}

XmlNode* addChild(XmlNode* parent, const char* name, std::size_t off) {
  if (parent == nullptr || name == nullptr) {
    return nullptr;
  }
  internal::RootImpl& root = *internal::rootOf(parent);
  XmlNode* const node = internal::newNode(root, parent, name, internal::noAttributes(), off);
  XmlNode* firsts = parent->child;
  XmlNode*& first = firstNamed(root, parent, name);
  XmlNode* const sameName = first;
  XmlNode** const link = sameName == nullptr || sameName->off <= off
                             ? nullptr
                             : linkTo(&firsts, parent, sameName, true);
  const bool addedSame = root.added != nullptr && std::strcmp(root.added->name, name) == 0;
  parent->child = insert<Ordered>(parent->child, node, root.added);
  first = insert<SameName>(sameName, node, addedSame ? root.added : nullptr);
  root.added = node;
  if (first == node) {
    if (link != nullptr) {
      *link = std::exchange(sameName->sibling, nullptr);
    }
    node->sibling = std::exchange(*linkTo(&firsts, parent, node, false), node);
  }
  return node;
}

XmlNode* cut(XmlNode* node) {
  if (node == nullptr || node->parent == nullptr || Ordered::before(node) == nullptr) {
    return node;
  }
  XmlNode* const parent = node->parent;
  internal::RootImpl& root = *internal::rootOf(parent);
  XmlNode* firsts = parent->child;
  XmlNode*& first = firstNamed(root, parent, node->name);
  const bool wasFirst = isFirst(node);
  XmlNode** const link = wasFirst ? linkTo(&firsts, parent, node, true) : nullptr;
  if (wasFirst) {
    *link = node->sibling;
  }
  parent->child = remove<Ordered>(parent->child, node);
  first = remove<SameName>(first, node);
  if (wasFirst && first != nullptr) {
    first->sibling = std::exchange(*linkTo(link, parent, first, false), first);
  }
  node->next = node->sibling = node->ordered = Ordered::before(node) = SameName::before(node) =
      nullptr;
  root.loose.push_back(node);
  root.added = nullptr;
  return node;
}

}  // namespace onu::xml
