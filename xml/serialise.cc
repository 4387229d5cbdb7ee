// Writing a tree as text.
#include "xml/carried_attributes.h"
#include "xml/grow_stack.h"
#include "xml/output.h"

namespace xml::internal {

namespace {

// Writes one subtree, without recursion: trees are as deep as a file makes them. Every step takes
// where the output ends and returns where it ends then. Texts leave room for the punctuation around
// them.
class Serialiser {
 public:
  Serialiser(const XmlNode& top, Output& out);

  char* subtree(char* at, const XmlNode& top);
  // The instructions that stood on one side of the root element.
  char* instructions(char* at, char side, const char* before, const char* behind);

 private:
  // An element whose start tag is written.
  struct Open {
    const XmlNode* node;
    const XmlNode* nextChild;
    const char* text;  // what is left of its text
    size_t readable;   // bytes of that which can be read
    size_t written;    // bytes of its text before that
    size_t nameLength;
  };

  char* start(char* at, const XmlNode& node);
  char* textUntil(char* at, Open& open, size_t off);
  char* end(char* at, const XmlNode& node, size_t nameLength);
  char* attributes(char* at, const XmlNode& node);
  char* defaults(char* at, const XmlNode& node);
  char* attribute(char* at, const char* name, const char* value);
  char* plain(char* at, const char* text) { return out_.put(at, text, std::strlen(text)); }

  // Texts of the input can be read to its end, others to their own.
  size_t readable(const char* text) const {
    size_t place = reinterpret_cast<uintptr_t>(text) - reinterpret_cast<uintptr_t>(root_.s);
    return place < inputSize_ ? inputSize_ - place : std::strlen(text) + 1;
  }

  const XmlRoot& root_;
  size_t inputSize_;
  Output& out_;
  GrowStack<Open, 24> open_;
  CarriedAttributes carried_;
  NameIndex declared_;  // elements with declared defaults
};

Serialiser::Serialiser(const XmlNode& top, Output& out)
    : root_(*rootOf(&top)), inputSize_(static_cast<size_t>(root_.e - root_.s)), out_(out) {
  for (size_t i = 0; root_.attr[i] != nullptr; ++i) {
    const char* element = root_.attr[i][0];
    declared_.add(nullptr, element, std::strlen(element), i);
  }
}

char* Serialiser::subtree(char* at, const XmlNode& top) {
  at = start(at, top);
  while (!open_.empty()) {
    Open& open = open_.top();
    const XmlNode* child = open.nextChild;
    if (child != nullptr) {
      at = textUntil(at, open, child->off);
      open.nextChild = child->ordered;
      at = start(at, *child);
    } else {
      at = out_.room(at, Output::kRoom);
      at = out_.put<ContentEscape>(at, open.text, open.readable);
      at = end(at, *open.node, open.nameLength);
      open_.pop();
    }
  }
  return at;
}

// Writes a start tag, and all of an element without children.
char* Serialiser::start(char* at, const XmlNode& node) {
  at = out_.room(at, Output::kRoom);
  *at++ = '<';
  size_t name = out_.size(at);
  at = out_.put<NameStop>(at, node.name, readable(node.name));
  size_t nameLength = out_.size(at) - name;
  if (node.attr[0] != nullptr || root_.attr[0] != nullptr) at = attributes(at, node);
  *at++ = '>';
  size_t textReadable = readable(node.txt);
  if (node.child == nullptr) {
    at = out_.put<ContentEscape>(at, node.txt, textReadable);
    return end(at, node, nameLength);
  }
  open_.push() = {&node, node.child, node.txt, textReadable, 0, nameLength};
  return at;
}

// A text that was replaced may be shorter than where its children stand.
char* Serialiser::textUntil(char* at, Open& open, size_t off) {
  if (off <= open.written) return at;
  const char* from = open.text;
  at = out_.putPart<ContentEscape>(at, &open.text, off - open.written, open.readable);
  auto taken = static_cast<size_t>(open.text - from);
  open.written += taken;
  open.readable -= taken;
  return at;
}

char* Serialiser::end(char* at, const XmlNode& node, size_t nameLength) {
  *at++ = '<';
  *at++ = '/';
  at = out_.put<NameStop>(at, node.name, nameLength < 16 ? readable(node.name) : nameLength + 1);
  *at++ = '>';
  return at;
}

char* Serialiser::attributes(char* at, const XmlNode& node) {
  carried_.begin(node);
  for (size_t i = 0; node.attr[2 * i] != nullptr; ++i) {
    if (!carried_.repeats(i)) at = attribute(at, node.attr[2 * i], node.attr[2 * i + 1]);
  }
  return root_.attr[0] != nullptr ? defaults(at, node) : at;
}

char* Serialiser::defaults(char* at, const XmlNode& node) {
  size_t list = declared_.find(nullptr, node.name, std::strlen(node.name));
  if (list == NameIndex::kNone) return at;
  for (const char** text = root_.attr[list] + 1; *text != nullptr; text += 3) {
    if (!carried_.has(text[0])) at = attribute(at, text[0], text[1]);
  }
  return at;
}

char* Serialiser::attribute(char* at, const char* name, const char* value) {
  *at++ = ' ';
  at = out_.put<NameStop>(at, name, readable(name));
  *at++ = '=';
  *at++ = '"';
  at = out_.put<ValueEscape>(at, value, readable(value));
  *at++ = '"';
  return at;
}

char* Serialiser::instructions(char* at, char side, const char* before, const char* behind) {
  for (const char*** list = root_.pi; *list != nullptr; ++list) {
    const char** texts = *list + 1;
    size_t count = 0;
    while (texts[count] != nullptr) ++count;
    const char* sides = texts[count + 1];
    for (size_t i = 0; i != count; ++i) {
      if (sides[i] != side) continue;
      at = plain(at, before);
      at = plain(at, "<?");
      at = plain(at, **list);
      if (texts[i][0] != '\0') at = plain(at, " ");
      at = plain(at, texts[i]);
      at = plain(at, "?>");
      at = plain(at, behind);
    }
  }
  return at;
}

// Enough for most documents that were changed a little.
size_t expectedSize(const XmlNode& node) {
  if (node.parent != nullptr) return 1024;
  const XmlRoot& root = *rootOf(&node);
  auto size = static_cast<size_t>(root.e - root.s);
  return size + size / 16 + 1024;
}

}  // namespace

}  // namespace xml::internal

namespace xml {

char* toXml(const XmlNode* node, size_t* length) {
  bool isText = node != nullptr && node->name != nullptr;
  internal::Output out(isText ? internal::expectedSize(*node) : 1);
  char* at = out.start();
  if (isText) {
    internal::Serialiser serialiser(*node, out);
    bool isRoot = node->parent == nullptr;
    if (isRoot) at = serialiser.instructions(at, '<', "", "\n");
    at = serialiser.subtree(at, *node);
    if (isRoot) at = serialiser.instructions(at, '>', "\n", "");
  }
  if (length != nullptr) *length = out.size(at);
  return out.release(at);
}

}  // namespace xml
