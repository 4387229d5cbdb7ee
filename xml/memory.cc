#include "xml/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace onu::xml::internal {

namespace {

const char** const kNoLists[] = {nullptr};

void releaseAttributes(const XmlNode& node) {
  std::size_t count = 0;
  while (node.attr[count] != nullptr) {
    ++count;
  }
  const char* const owners = node.attr[count + 1];
  for (std::size_t i = 0; i < count; ++i) {
    if ((owners[i / 2] & (i % 2 == 0 ? kNameOwned : kValueOwned)) != 0) {
      release(node.attr[i]);
    }
  }
  release(owners);
  release(node.attr);
}

// What the elements of a subtree own on the heap.
void releaseAll(const XmlNode* top) {
  for (const XmlNode* node = top; node != nullptr; node = following(node, top)) {
    if ((node->flags & (kNameAllocated | kTextAllocated | kOwnAttributes)) == 0) {
      continue;  // as most
    }
    if ((node->flags & kNameAllocated) != 0) {
      release(node->name);
    }
    if ((node->flags & (kTextAllocated | kTextInBlock)) == kTextAllocated) {
      release(node->txt);
    }
    if ((node->flags & kOwnAttributes) != 0) {
      releaseAttributes(*node);
    }
  }
}

}  // namespace

void* allocate(std::size_t bytes) { return reallocate(nullptr, bytes); }

void* reallocate(void* old, std::size_t bytes) {
  void* const memory = std::realloc(old, bytes);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void release(const void* memory) { std::free(const_cast<void*>(memory)); }

Arena::~Arena() {
  while (block_ != nullptr) {
    std::free(std::exchange(block_, block_->older));
  }
}

char* Arena::newBlock(std::size_t bytes) {
  auto* const block = static_cast<Block*>(allocate(sizeof(Block) + bytes));
  block->older = std::exchange(block_, block);
  return reinterpret_cast<char*>(block + 1);
}

// What is large has a block of its own, and the one in use stays.
char* Arena::takeFromNewBlock(std::size_t bytes) {
  if (bytes > blockSize_ / 2) {
    return newBlock(bytes);
  }
  next_ = newBlock(blockSize_);
  end_ = next_ + blockSize_;
  return take(bytes);
}

char* Arena::copy(const char* from, std::size_t length) {
  char* const to = take(length + 1);
  if (length != 0) {
    std::memcpy(to, from, length);
  }
  to[length] = '\0';
  return to;
}

const char*** Arena::lists(const NameTable& names, const std::vector<ListedText>& texts) {
  const std::size_t count = names.size();
  std::vector<std::size_t> sizes(count, 1);
  for (const ListedText& text : texts) {
    ++sizes[text.list];
  }
  const char*** const table = array<const char**>(count + 1);
  table[count] = nullptr;
  for (std::size_t i = 0; i != count; ++i) {
    table[i] = array<const char*>(sizes[i] + 1);
    table[i][sizes[i]] = nullptr;
    table[i][0] = names.name(i).data();
    sizes[i] = 1;
  }
  for (const ListedText& text : texts) {
    table[text.list][sizes[text.list]++] = text.text;
  }
  return table;
}

RootImpl* newRoot(char* data, std::size_t length) {
  auto* const root = new RootImpl();
  // Two to four blocks of elements for a settings file, and not much of the last one unused.
  root->words.expect(std::clamp<std::size_t>(length / 2, 512, 16384));
  root->texts.expect(std::clamp<std::size_t>(length / 8, 256, 16384));
  root->m = data;
  root->len = static_cast<std::ptrdiff_t>(length);
  root->s = data;
  root->e = data + length;
  root->xml.attr = noAttributes();
  root->xml.txt = "";
  std::memcpy(root->predefined, kPredefined, sizeof(kPredefined));
  root->ent = root->predefined;
  root->attr = const_cast<const char***>(kNoLists);
  root->pi = const_cast<const char***>(kNoLists);
  return root;
}

RootImpl* rootOf(const XmlNode* node) {
  while (node->parent != nullptr) {
    node = node->parent;
  }
  return static_cast<RootImpl*>(reinterpret_cast<XmlRoot*>(const_cast<XmlNode*>(node)));
}

const XmlNode* following(const XmlNode* node, const XmlNode* top) {
  if (node->child != nullptr) {
    return node->child;
  }
  while (node != top && node->ordered == nullptr) {
    node = node->parent;
  }
  return node == top ? nullptr : node->ordered;
}

}  // namespace onu::xml::internal

namespace onu::xml {

void freeDoc(XmlRoot* root) {
  if (root == nullptr) {
    return;
  }
  auto* const impl = static_cast<internal::RootImpl*>(root);
  internal::releaseAll(&root->xml);
  for (const XmlNode* node : impl->loose) {
    internal::releaseAll(node);
  }
  if (root->len < 0) {
    std::free(root->m);
  }
  std::free(root->u);
  delete impl;
}

}  // namespace onu::xml
