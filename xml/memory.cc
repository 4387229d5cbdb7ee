#include "xml/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace xml::internal {

namespace {

constexpr size_t kSmallestBlock = 256;
constexpr size_t kLargestBlock = 16384;
constexpr size_t kSharedOwners = 32;
constexpr const char kAllBorrowed[kSharedOwners + 1] = "                                ";
constexpr const char* kNoAttributes[] = {nullptr, ""};
const char** const kNoLists[] = {nullptr};

constexpr const char* kPredefined[2 * kPredefinedEntities + 1] = {
    "lt;", "&#60;", "gt;", "&#62;", "quot;", "&#34;", "apos;", "&#39;", "amp;", "&#38;", nullptr};

// Set in elements that may own heap memory.
constexpr uint8_t kMayOwn = kNameAllocated | kTextAllocated | kOwnAttributes;

void release(const void* memory) { std::free(const_cast<void*>(memory)); }

void releaseAttributes(const XmlNode& node) {
  size_t count = 0;
  while (node.attr[count] != nullptr) ++count;
  const char* owners = node.attr[count + 1];
  for (size_t i = 0; i < count; ++i) {
    if ((owners[i / 2] & (i % 2 == 0 ? kNameOwned : kValueOwned)) != 0) release(node.attr[i]);
  }
  release(owners);
  release(node.attr);
}

void releaseNode(const XmlNode& node) {
  if ((node.flags & kMayOwn) == 0) return;
  if ((node.flags & kNameAllocated) != 0) release(node.name);
  if ((node.flags & (kTextAllocated | kTextInBlock)) == kTextAllocated) release(node.txt);
  if ((node.flags & kOwnAttributes) != 0) releaseAttributes(node);
}

}  // namespace

void* allocate(size_t bytes) { return reallocate(nullptr, bytes); }

void* reallocate(void* old, size_t bytes) {
  void* memory = std::realloc(old, bytes);
  if (memory == nullptr) std::abort();
  return memory;
}

const char** noAttributes() { return const_cast<const char**>(kNoAttributes); }

const char* borrowedText(size_t count) {
  return count > kSharedOwners ? nullptr : kAllBorrowed + (kSharedOwners - count);
}

NodeStore::~NodeStore() {
  if (slab_ != nullptr) slab_->end = next_;
  while (slab_ != nullptr) {
    for (const XmlNode* node = first(); node != slab_->end; ++node) releaseNode(*node);
    std::free(std::exchange(slab_, slab_->older));
  }
}

void NodeStore::grow(size_t count) {
  before_ = this->count();
  if (slab_ != nullptr) slab_->end = next_;
  auto* slab = static_cast<Slab*>(allocate(sizeof(Slab) + count * sizeof(XmlNode)));
  slab->older = std::exchange(slab_, slab);
  next_ = first();
  end_ = next_ + count;
}

// Blocks of an eighth of the input: few, and little of the last one is wasted.
void Arena::expect(size_t inputBytes) {
  blockSize_ = std::clamp(inputBytes / 8, kSmallestBlock, kLargestBlock);
}

Arena::~Arena() {
  while (block_ != nullptr) std::free(std::exchange(block_, block_->older));
}

char* Arena::fromNewBlock(size_t bytes) {
  size_t size = bytes > blockSize_ / 2 ? bytes : blockSize_;
  auto* block = static_cast<Block*>(allocate(sizeof(Block) + size));
  block->older = std::exchange(block_, block);
  char* start = reinterpret_cast<char*>(block + 1);
  if (size == bytes) return start;
  next_ = start + bytes;
  end_ = start + size;
  return start;
}

char* Arena::copy(const char* from, size_t length) {
  char* to = text(length + 1);
  if (length != 0) std::memcpy(to, from, length);
  to[length] = '\0';
  return to;
}

char* Arena::pointers(size_t count) {
  auto misaligned = reinterpret_cast<uintptr_t>(next_) % alignof(void*);
  auto gap = misaligned == 0 ? 0 : alignof(void*) - misaligned;
  if (static_cast<size_t>(end_ - next_) < gap + count * sizeof(void*)) {
    return fromNewBlock(count * sizeof(void*));
  }
  return text(gap + count * sizeof(void*)) + gap;
}

RootImpl* newRoot() {
  auto* root = new RootImpl();
  std::memcpy(root->predefined, kPredefined, sizeof(kPredefined));
  root->xml.attr = noAttributes();
  root->xml.txt = "";
  root->ent = root->predefined;
  root->attr = const_cast<const char***>(kNoLists);
  root->pi = const_cast<const char***>(kNoLists);
  return root;
}

}  // namespace xml::internal

namespace xml {

void freeDoc(XmlRoot* root) {
  if (root == nullptr) return;
  internal::releaseNode(root->xml);
  if (root->len < 0) std::free(root->m);
  std::free(root->u);
  delete static_cast<internal::RootImpl*>(root);
}

}  // namespace xml
