// The settings files as a tree: parse in place, look up, change, write back.
//
// A document lives from a parse entry point to freeDoc. Names, values and character data are cut
// out of the input buffer where they lie, so that the buffer is written to and must last as long as
// the document, and every text of the tree is valid until freeDoc. Operations on no node (nullptr)
// give nullptr or do nothing; only toXml and error then give an empty text. No name (nullptr) is
// found nowhere and sets nothing. A document is used by one thread; nothing is shared between
// documents but constants. Running out of memory throws std::bad_alloc, except while input is read.
//
// Decided where parsers differ: buffers double as they grow. The length tells where the data ends,
// or a zero byte before that. References to characters above 0x7FFFFFFF stay as written, and so do
// references to entities from the first one on that would make it more than 1 MiB of text in a
// document, so that a small file cannot take all memory. For a circle of entities no more is looked
// than the bytes of the declarations pay for: one that hides behind long chains is no error, and
// that bound ends it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>

namespace onu::xml {

// Bits of XmlNode::flags: texts which the tree releases with free(). The lower bits are the tree's
// own.
constexpr std::uint8_t kNameAllocated = 0x80;
// Set it after setText to hand a heap text over. Also set for texts in the document's own memory,
// so a txt stored without setText is not sure to be released.
constexpr std::uint8_t kTextAllocated = 0x40;
// While set, setAttr takes over heap copies of name and value.
constexpr std::uint8_t kAttributesAllocated = 0x20;

// One element. `name` is nullptr only in the root of a document without any element.
struct XmlNode {
  const char* name;
  // Name, value, name, value, ..., nullptr, then one text with a byte per attribute that says who
  // owns the pair. Elements without attributes share one constant empty array.
  const char** attr;
  const char* txt;  // all character data of the element itself, "" when none
  std::size_t off;  // bytes of the parent's txt that stand before this element
  XmlNode* next;    // next element of the same name under the same parent
  // First element of the next other name under the same parent; set in the first of each name.
  XmlNode* sibling;
  XmlNode* ordered;  // next element under the same parent in document order
  XmlNode* child;    // first child element
  XmlNode* parent;   // nullptr in the root
  std::uint8_t flags;
};

// A parsed document. Made by the parse functions only, since more state follows the listed fields.
struct XmlRoot {
  XmlNode xml;         // the root element
  XmlNode* cur;        // element left open by the data; nullptr once the root element is closed
  char* m;             // the input buffer
  std::ptrdiff_t len;  // its length in bytes, or -1 when freeDoc releases it with free()
  char* u;             // UTF-8 copy of UTF-16 input, else nullptr
  char* s;             // first byte of the data, after any conversion
  char* e;             // one past its last byte; data ends early at a NUL byte
  const char** ent;    // general entities: name with its ";", replacement, ..., nullptr
  // Declared defaults: a list {element, attribute, value, "*" or " " (CDATA), ..., nullptr} for
  // each element, then nullptr.
  const char*** attr;
  // Instructions: a list {target, text, ..., nullptr, '<' (before root) or '>' for each text} for
  // each target, then nullptr.
  const char*** pi;
  short standalone;  // 1 when the XML declaration says standalone="yes"
  char err[128];     // "[error near line %d]: %s" of the first error, or ""
};

// A step of get: the index-th (from 0) child of that name.
struct Step {
  const char* name;
  int index;
};

// Reads and parses a whole file; the buffer is the document's. nullptr when it cannot be opened.
// Whatever else goes wrong is in `err`: a file that is empty, unreadable or too large for the
// memory there is gives a document without elements and "root tag missing". The caller ends the
// document with freeDoc.
XmlRoot* parseFile(const char* path);

// The same on an open file, read from where it stands; it stays open. nullptr for a negative
// descriptor.
XmlRoot* parseFd(int fd);

// The same with what is left in a stream, which stays open. nullptr when there is no memory to read
// it into.
XmlRoot* parseStream(FILE* stream);

// Parses `length` bytes in place. The buffer needs no spare byte. It stays the caller's, who
// releases it after freeDoc, or sets `len` to -1 so that freeDoc does it with free(). Never
// nullptr: on malformed input `err` is set and the elements read up to there form the tree.
XmlRoot* parseStr(char* data, std::size_t length);

// First child element of that name, or nullptr.
XmlNode* child(const XmlNode* node, const char* name);

// The n-th element after this one among those of its name, or nullptr when there are fewer. Itself
// for 0 and for a negative number.
XmlNode* idx(XmlNode* node, int n);

// Value of an attribute, else the default declared for this element in the document type, else
// nullptr.
const char* attr(const XmlNode* node, const char* name);

// Walks down from `node`, one child per step, to nullptr or the last one's element. The steps end
// with the list or at an empty name or none; a negative index takes the first child of that name
// and ends there.
XmlNode* get(XmlNode* node, std::initializer_list<Step> steps);

// Replaces the element's own text; child elements keep their places in it as far as it reaches. The
// text is not copied: it must outlive the last use of the tree, unless kTextAllocated is set in the
// node afterwards, which hands it over. nullptr stands for "". Returns the node.
XmlNode* setText(XmlNode* node, const char* text);

// Replaces an attribute's value, appends a new attribute, or removes it, however often the element
// carries it, when the value is nullptr. Name and value are not copied: they must outlive the last
// use of the tree, unless kAttributesAllocated was set in the node before the call, which hands
// both over, the name of a removed attribute too. Returns the node.
XmlNode* setAttr(XmlNode* node, const char* name, const char* value);

// Makes a child without attributes and text that stands `off` bytes into the parent's text, behind
// the children already there. The name is not copied: it must outlive the last use of the tree,
// unless kNameAllocated is set in the element afterwards, which hands it over. The document owns
// the new element, which is returned.
XmlNode* addChild(XmlNode* parent, const char* name, std::size_t off);

// Takes an element with its subtree out of its parent's lists. It keeps its document, which still
// owns it and answers for its defaults and error, and its `parent`. The root stays where it is, and
// so does what was cut before. Returns the node.
XmlNode* cut(XmlNode* node);

// Writes the element and its subtree; for the root also the document's processing instructions, but
// neither XML declaration, comments nor document type. A default declared for an element is written
// as its attribute, in as many elements as there are, up to the first one that would make it more
// than 1 MiB of text; the rest is left out, so that a small file makes no text without limit. Never
// nullptr; "" for no node or one without a name. The caller releases the text with free();
// `length`, when given, receives its length without the NUL.
char* toXml(const XmlNode* node, std::size_t* length = nullptr);

// Releases the document with everything reachable from it, cut elements and allocated texts
// included.
void freeDoc(XmlRoot* root);

// The error of the node's document, "" when there was none. Valid until freeDoc.
const char* error(const XmlNode* node);

}  // namespace onu::xml
