// Builds the tree of a document in document order.
#pragma once

#include "xml/grow_stack.h"
#include "xml/memory.h"
#include "xml/name_index.h"
#include "xml/scan.h"

namespace xml::internal {

// Knows of every open element what the records do not list: lengths, tails of its lists, and the
// names its children have. Costs do not depend on how many children, names or text pieces there
// are.
class TreeBuilder {
 public:
  // `e` ends the input, which names and texts point into.
  TreeBuilder(RootImpl& root, const char* e) : root_(root), e_(e) {}

  bool isOpen() const { return !frames_.empty(); }
  bool hasRoot() const { return root_.xml.name != nullptr; }

  // The innermost open element. There must be one.
  const char* openName() { return frames_.top().node->name; }
  size_t openLength() { return frames_.top().nameLength; }
  XmlNode* openNode() { return frames_.top().node; }

  // Adds an element behind what the open one has so far; the first is the root. Not yet open.
  XmlNode* add(const char* name, size_t nameLength, const char** attributes) {
    if (frames_.empty()) return addRoot(name, attributes);
    if (root_.nodes.full()) makeRoom(name);
    XmlNode* node = root_.nodes.take();
    Frame& frame = frames_.top();
    *node = {name,    attributes, "",      frame.textLength, nullptr,
             nullptr, nullptr,    nullptr, frame.node,       0};
    link(frame, node, nameLength);
    return node;
  }

  void open(XmlNode* node, size_t nameLength);
  void close();
  // Closes what is open, from the inside out.
  void closeAll();

  // Appends character data to the open element. `lasting` text is part of the input, with a
  // writable byte behind it, and need not be copied.
  void appendText(char* text, size_t length, bool lasting) {
    if (length == 0) return;
    Frame& frame = frames_.top();
    if (lasting && frame.textLength == 0) {
      // Ended only here: a byte written just before the text is copied would hold up the copy.
      text[length] = '\0';
      frame.node->txt = text;
    } else {
      if (frame.pieces == kNoPieces) startPieces(frame);
      appendPiece(text, length, lasting ? inputLeft(text) : length);
    }
    frame.textLength += length;
  }

 private:
  // Up to so many names are compared one by one.
  static constexpr size_t kMostUnindexed = 12;
  static constexpr size_t kNoPieces = static_cast<size_t>(-1);

  struct Frame {
    XmlNode* node;
    size_t nameLength;
    size_t textLength;
    size_t pieces;  // where in pieces_ its text starts that is not in one place; or kNoPieces
    XmlNode* lastChild;
    XmlNode* lastFirst;  // the newest name's first child
    size_t groups;       // where in groups_ its children's names start
    uint64_t seen;       // a bit for each name, not necessarily its own
    bool indexed;        // names are in index_
  };
  // Children of one name.
  struct Group {
    uint64_t key;
    const char* name;
    size_t length;
    XmlNode* last;
  };

  XmlNode* addRoot(const char* name, const char** attributes);
  void makeRoom(const char* place);
  void link(Frame& frame, XmlNode* node, size_t nameLength) {
    uint64_t key = nameKey(node->name, nameLength, e_);
    uint64_t bit = uint64_t{1} << (key * 0x9E3779B97F4A7C15 >> 58);
    Group* group =
        (frame.seen & bit) == 0 ? nullptr : findGroup(frame, key, node->name, nameLength);
    if (group != nullptr) {
      group->last->next = node;
      group->last = node;
    } else {
      if (frame.lastFirst != nullptr) frame.lastFirst->sibling = node;
      frame.lastFirst = node;
      frame.seen |= bit;
      groups_.push() = {key, node->name, nameLength, node};
      if (groups_.size() - frame.groups > kMostUnindexed) indexGroup(frame);
    }
    (frame.lastChild == nullptr ? frame.node->child : frame.lastChild->ordered) = node;
    frame.lastChild = node;
  }
  Group* findGroup(const Frame& frame, uint64_t key, const char* name, size_t length);
  void indexGroup(Frame& frame);
  void startPieces(Frame& frame);
  // How much can be read of a text of the input.
  size_t inputLeft(const char* text) const { return static_cast<size_t>(e_ - text); }
  // Short pieces are copied 16 bytes at once where so many are `readable`.
  void appendPiece(const char* text, size_t length, size_t readable) {
    pieces_.reserve(length + 16);
    char* to = pieces_.data() + pieces_.size();
    if (length <= 16 && readable >= 16) {
      std::memcpy(to, text, 16);
    } else {
      std::memcpy(to, text, length);
    }
    pieces_.resize(pieces_.size() + length);
  }
  void keepPieces(Frame& frame);

  RootImpl& root_;
  const char* e_;
  GrowStack<Frame, 24> frames_;
  GrowStack<Group, 64> groups_;   // of the open elements, the innermost one's on top
  GrowStack<char, 1024> pieces_;  // of their texts, likewise
  NameIndex index_;               // of groups_ where there are many; the scope is the element
};

}  // namespace xml::internal
