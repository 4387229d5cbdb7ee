#include "xml/tree_builder.h"

#include <algorithm>

namespace xml::internal {

namespace {

constexpr size_t kLargestSlab = 400;

}  // namespace

XmlNode* TreeBuilder::addRoot(const char* name, const char** attributes) {
  root_.xml.name = name;
  root_.xml.attr = attributes;
  return &root_.xml;
}

// As much as the rest of the input takes if it is like what has been read.
void TreeBuilder::makeRoom(const char* place) {
  auto read = static_cast<size_t>(place - root_.s) + 1;
  auto rest = static_cast<size_t>(e_ - place);
  size_t made = root_.nodes.count();
  size_t bytesPerNode = made == 0 ? 48 : std::max<size_t>(read / made, 4);
  root_.nodes.grow(std::min(rest / bytesPerNode + 4, kLargestSlab));
}

TreeBuilder::Group* TreeBuilder::findGroup(const Frame& frame, uint64_t key, const char* name,
                                           size_t length) {
  if (frame.indexed) {
    size_t i = index_.find(frame.node, name, length);
    return i == NameIndex::kNone ? nullptr : &groups_[i];
  }
  for (size_t i = groups_.size(); i-- != frame.groups;) {
    const Group& group = groups_[i];
    if (group.key == key && group.length == length &&
        (length <= 8 || std::memcmp(group.name, name, length) == 0)) {
      return &groups_[i];
    }
  }
  return nullptr;
}

// Adds the newest name to the index, and those before it the first time.
void TreeBuilder::indexGroup(Frame& frame) {
  for (size_t i = frame.indexed ? groups_.size() - 1 : frame.groups; i != groups_.size(); ++i) {
    index_.add(frame.node, groups_[i].name, groups_[i].length, i);
  }
  frame.indexed = true;
}

void TreeBuilder::open(XmlNode* node, size_t nameLength) {
  frames_.push() = {node, nameLength, 0, kNoPieces, nullptr, nullptr, groups_.size(), 0, false};
}

void TreeBuilder::close() {
  Frame& frame = frames_.top();
  if (frame.pieces != kNoPieces) keepPieces(frame);
  if (frame.indexed) index_.removeLast(groups_.size() - frame.groups);
  groups_.resize(frame.groups);
  frames_.pop();
}

void TreeBuilder::closeAll() {
  while (!frames_.empty()) close();
}

void TreeBuilder::startPieces(Frame& frame) {
  frame.pieces = pieces_.size();
  if (frame.textLength != 0) {
    appendPiece(frame.node->txt, frame.textLength, inputLeft(frame.node->txt));
  }
}

void TreeBuilder::keepPieces(Frame& frame) {
  frame.node->txt = root_.arena.copy(pieces_.data() + frame.pieces, frame.textLength);
  frame.node->flags |= kTextAllocated | kTextInBlock;
  pieces_.resize(frame.pieces);
}

}  // namespace xml::internal
