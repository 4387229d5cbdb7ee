// What a document owns behind its listed fields: element slabs and blocks for arrays and texts.
#pragma once

#include "xml/xml.h"

namespace xml::internal {

// Bits of XmlNode::flags next to the public ones.
// With kTextAllocated: txt lies in a block and is never freed alone. Nothing else follows from it,
// since txt may have been stored over.
constexpr uint8_t kTextInBlock = 0x10;
// attr and its owner text are heap allocations.
constexpr uint8_t kOwnAttributes = 0x08;

// Bytes of the text that follows the attribute array, one per attribute: bits on top of a blank.
constexpr char kBorrowed = ' ';
constexpr char kNameOwned = 1;
constexpr char kValueOwned = 2;

// Heap memory; a process that cannot get it ends.
void* allocate(size_t bytes);
void* reallocate(void* old, size_t bytes);

// The array of elements without attributes.
const char** noAttributes();

// The owner text for `count` attributes of which the tree owns none; NULL when longer than the
// shared one.
const char* borrowedText(size_t count);

// Elements, in slabs that are released together. An element never moves.
class NodeStore {
 public:
  NodeStore() = default;
  NodeStore(const NodeStore&) = delete;
  NodeStore& operator=(const NodeStore&) = delete;
  ~NodeStore();

  bool full() const { return next_ == end_; }
  // Makes room for `count` further elements.
  void grow(size_t count);
  // Uninitialised memory for one element. The store must not be full.
  XmlNode* take() { return next_++; }
  // Elements taken so far.
  size_t count() const {
    return slab_ == nullptr ? 0 : before_ + static_cast<size_t>(next_ - first());
  }

 private:
  struct Slab {
    Slab* older;
    XmlNode* end;  // behind the last element taken
  };
  XmlNode* first() const { return reinterpret_cast<XmlNode*>(slab_ + 1); }

  XmlNode* next_ = nullptr;
  XmlNode* end_ = nullptr;
  Slab* slab_ = nullptr;
  size_t before_ = 0;
};

// Arrays and texts, released together.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena();

  // Fits the size of the blocks to that of the input.
  void expect(size_t inputBytes);

  char* text(size_t bytes) {
    if (static_cast<size_t>(end_ - next_) < bytes) return fromNewBlock(bytes);
    char* result = next_;
    next_ += bytes;
    return result;
  }
  // A copy with a NUL behind it.
  char* copy(const char* from, size_t length);
  // An array of pointers, not initialised.
  template <typename Pointer>
  Pointer* array(size_t count) {
    static_assert(sizeof(Pointer) == sizeof(void*), "aligned for pointers");
    return reinterpret_cast<Pointer*>(pointers(count));
  }

 private:
  struct Block {
    Block* older;
  };
  char* fromNewBlock(size_t bytes);
  char* pointers(size_t count);

  char* next_ = nullptr;
  char* end_ = nullptr;
  Block* block_ = nullptr;
  size_t blockSize_ = 256;
};

constexpr size_t kPredefinedEntities = 5;

struct RootImpl : XmlRoot {
  NodeStore nodes;
  Arena arena;
  const char* predefined[2 * kPredefinedEntities + 1];
};

// A document with empty tables and no element.
RootImpl* newRoot();

// The document at the top of a node's parents.
inline XmlRoot* rootOf(const XmlNode* node) {
  while (node->parent != nullptr) node = node->parent;
  return reinterpret_cast<XmlRoot*>(const_cast<XmlNode*>(node));
}

}  // namespace xml::internal
