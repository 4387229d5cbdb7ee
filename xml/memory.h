// What a document owns behind its listed fields.
#pragma once

#include <iterator>
#include <vector>

#include "xml/names.h"
#include "xml/xml.h"

namespace onu::xml::internal {

// Bits of XmlNode::flags next to the public ones.
// With kTextAllocated: txt lies in a block and is never freed alone. Nothing else follows from it,
// since txt may have been stored over.
constexpr std::uint8_t kTextInBlock = 0x10;
// attr and its owner text are heap allocations.
constexpr std::uint8_t kOwnAttributes = 0x08;

// Bytes of the text that follows the attribute array, one per attribute: bits on top of a blank.
constexpr char kBorrowed = ' ';
constexpr char kNameOwned = 1;
constexpr char kValueOwned = 2;

// Heap memory; what cannot be had throws std::bad_alloc.
void* allocate(std::size_t bytes);
void* reallocate(void* old, std::size_t bytes);

// Releases a heap text of the tree.
void release(const void* memory);

// The array of elements without attributes.
inline constexpr const char* kNoAttributes[] = {nullptr, ""};
inline const char** noAttributes() { return const_cast<const char**>(kNoAttributes); }

// A text of a list, which goes by its name's number.
struct ListedText {
  std::size_t list;
  const char* text;
};

// Memory of a document that is released with it, from blocks. With an allocation for each element,
// array and text, 20 KiB of settings take 14.8 instructions a byte to parse on the unit instead of
// 12.9, and the main file of 3.2 KiB 13.9 instead of 12.0 (script/bench machine).
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena();

  // Fits the size of the blocks to that of the input.
  void expect(std::size_t blockSize) { blockSize_ = blockSize; }

  // Every block is aligned for pointers, and so is all that is taken where only arrays of pointers
  // and elements are.
  char* take(std::size_t bytes) {
    char* const place = next_;
    if (static_cast<std::size_t>(end_ - next_) < bytes) {
      return takeFromNewBlock(bytes);
    }
    next_ += bytes;
    return place;
  }
  // An array of pointers, not initialised.
  template <typename Pointer>
  Pointer* array(std::size_t count) {
    return reinterpret_cast<Pointer*>(take(count * sizeof(Pointer)));
  }
  // A copy with a NUL behind it.
  char* copy(const char* from, std::size_t length);
  // The texts as a table: for each name a list of it, which a NUL ends, its texts and a nullptr.
  const char*** lists(const NameTable& names, const std::vector<ListedText>& texts);

 private:
  struct Block {
    Block* older;
  };
  char* newBlock(std::size_t bytes);
  char* takeFromNewBlock(std::size_t bytes);

  char* next_ = nullptr;
  char* end_ = nullptr;
  Block* block_ = nullptr;
  std::size_t blockSize_ = 0;
};

// XmlRoot::ent without declared entities.
inline constexpr const char* kPredefined[] = {"lt;",   "&#60;", "gt;",  "&#62;", "quot;", "&#34;",
                                              "apos;", "&#39;", "amp;", "&#38;", nullptr};

// Any element but the root, with what stands before it in the lists of its parent's children: all
// in document order, and those of its name. Before the first one stands the last. Both are nullptr
// in an element that was cut.
struct Node : XmlNode {
  XmlNode* before;
  XmlNode* beforeSame;
};

struct RootImpl : XmlRoot {
  const char* predefined[std::size(kPredefined)];
  Arena words;                  // elements and arrays of pointers
  Arena texts;                  // what is not in the input
  std::vector<XmlNode*> loose;  // elements that were cut
  // The parent that addChild or cut changed last, the names its children have, or had, and the
  // first of each.
  const XmlNode* changed = nullptr;
  XmlNode* added = nullptr;  // the child that it was given last, null once one was cut
  NameTable names;
  std::vector<XmlNode*> firsts;
};

// A document for `length` bytes of data, with empty tables and no element.
RootImpl* newRoot(char* data, std::size_t length);

// An element that is linked to nothing but its parent.
inline Node* newNode(RootImpl& root, XmlNode* parent, const char* name, const char** attributes,
                     std::size_t off) {
  auto* const node = reinterpret_cast<Node*>(root.words.take(sizeof(Node)));
  *node = {{name, attributes, "", off, nullptr, nullptr, nullptr, nullptr, parent, 0}, node, node};
  return node;
}

// The document at the top of a node's parents.
RootImpl* rootOf(const XmlNode* node);

// The element behind this one in the document order of a subtree, nullptr behind the last.
const XmlNode* following(const XmlNode* node, const XmlNode* top);

}  // namespace onu::xml::internal
