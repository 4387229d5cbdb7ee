// Writing a tree as text.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "xml/memory.h"
#include "xml/names.h"
#include "xml/scan.h"

namespace onu::xml::internal {

namespace {

// The text under construction. Where it ends so far, `at`, is the writer's to carry from call to
// call: kept here it would be stored and loaded again around every byte written.
class Output {
 public:
  // What may be written behind every text without asking for room.
  static constexpr std::size_t kRoom = 16;

  explicit Output(std::size_t capacity)
      : data_(static_cast<char*>(allocate(capacity + 2 * kRoom))), limit_(data_ + capacity) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  char* start() const { return data_; }
  std::size_t size(const char* at) const { return static_cast<std::size_t>(at - data_); }

  // Writes at most so many bytes of a text, up to its NUL, and moves it on. What is of the classes
  // is written as references.
  template <unsigned kEscape>
  char* part(char* at, const char** from, std::size_t most);
  template <unsigned kEscape>
  char* text(char* at, const char* from) {
    return part<kEscape>(at, &from, static_cast<std::size_t>(-1));
  }
  // A text as it is.
  char* plain(char* at, const char* from) { return text<0>(at, from); }

  // The text with a NUL, for the caller to free, in exactly as much memory. Ends the output.
  char* release(char* at);

 private:
  char* room(char* at) { return at < limit_ ? at : grow(at); }
  char* grow(char* at);
  static char* escape(char* at, char c);

  char* data_;
  char* limit_;  // kRoom bytes and some can be written here yet
};

char* Output::grow(char* at) {
  const std::size_t used = size(at);
  const std::size_t capacity = 2 * used;
  data_ = static_cast<char*>(reallocate(data_, capacity + 2 * kRoom));
  limit_ = data_ + capacity;
  return data_ + used;
}

char* Output::escape(char* at, char c) {
  static constexpr struct {
    char character;
    std::string_view reference;
  } kReferences[] = {{'&', "&amp;"},  {'<', "&lt;"},   {'>', "&gt;"},  {'"', "&quot;"},
                     {'\n', "&#xA;"}, {'\t', "&#x9;"}, {'\r', "&#xD;"}};
  for (const auto& entry : kReferences) {
    if (entry.character == c) {
      std::memcpy(at, entry.reference.data(), entry.reference.size());
      return at + entry.reference.size();
    }
  }
  return at;
}

template <unsigned kEscape>
inline char* Output::part(char* at, const char** from, std::size_t most) {
  const char* p = *from;
  while (most != 0) {
    const char* const runEnd = p + std::min(most, kRoom);
    most -= static_cast<std::size_t>(runEnd - p);
    while (p != runEnd && !(kEscape == 0 ? *p == '\0' : is(*p, kEscape))) {
      *at++ = *p++;
    }
    most += static_cast<std::size_t>(runEnd - p);
    if (p != runEnd) {
      if (*p == '\0') {
        break;
      }
      at = escape(at, *p++);
      --most;
    }
    at = room(at);
  }
  *from = p;
  return room(at);
}

char* Output::release(char* at) {
  *at = '\0';
  return static_cast<char*>(reallocate(data_, size(at) + 1));
}

// Writes one subtree, without recursion: trees are as deep as a file makes them. Every step takes
// where the output ends and returns where it ends then.
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
    const char* text;     // what is left of its text
    std::size_t written;  // bytes of its text before that
  };

  char* start(char* at, const XmlNode& node);
  char* textUntil(char* at, Open& open, std::size_t off);
  char* end(char* at, const XmlNode& node, const char* text);
  char* attributes(char* at, const XmlNode& node);
  char* attribute(char* at, const char* name, const char* value);
  char* defaults(char* at, const XmlNode& node, std::size_t count);
  bool isCarried(const XmlNode& node, std::size_t count, const char* name) const;

  // An element's attributes up to so many are compared one by one, more are in carried_.
  static constexpr std::size_t kFewAttributes = 8;

  const RootImpl& root_;
  Output& out_;
  std::vector<Open> open_;
  NameTable carried_;
  NameTable declared_;                         // elements with declared defaults
  std::size_t budget_ = std::size_t{1} << 20;  // bytes of defaults that may be written yet
};

Serialiser::Serialiser(const XmlNode& top, Output& out) : root_(*rootOf(&top)), out_(out) {
  for (std::size_t i = 0; root_.attr[i] != nullptr; ++i) {
    declared_.add(root_.attr[i][0]);
  }
}

char* Serialiser::subtree(char* at, const XmlNode& top) {
  at = start(at, top);
  while (!open_.empty()) {
    Open& open = open_.back();
    const XmlNode* const child = open.nextChild;
    if (child != nullptr) {
      at = textUntil(at, open, child->off);
      open.nextChild = child->ordered;
      at = start(at, *child);
    } else {
      at = end(at, *open.node, open.text);
      open_.pop_back();
    }
  }
  return at;
}

// Writes a start tag, and all of an element without children.
inline char* Serialiser::start(char* at, const XmlNode& node) {
  *at++ = '<';
  at = out_.plain(at, node.name);
  if (node.attr[0] != nullptr || root_.attr[0] != nullptr) {
    at = attributes(at, node);
  }
  *at++ = '>';
  if (node.child == nullptr) {
    return end(at, node, node.txt);
  }
  open_.push_back({&node, node.child, node.txt, 0});
  return at;
}

// A text that was replaced may be shorter than where its children stand.
inline char* Serialiser::textUntil(char* at, Open& open, std::size_t off) {
  if (off <= open.written) {
    return at;
  }
  const char* const from = open.text;
  at = out_.part<kContentEscape>(at, &open.text, off - open.written);
  open.written += static_cast<std::size_t>(open.text - from);
  return at;
}

inline char* Serialiser::end(char* at, const XmlNode& node, const char* text) {
  at = out_.text<kContentEscape>(at, text);
  *at++ = '<';
  *at++ = '/';
  at = out_.plain(at, node.name);
  *at++ = '>';
  return at;
}

char* Serialiser::attributes(char* at, const XmlNode& node) {
  std::size_t i = 0;
  for (; node.attr[2 * i] != nullptr; ++i) {
    const char* const name = node.attr[2 * i];
    if (i == kFewAttributes) {
      carried_.clear();
      for (std::size_t j = 0; j != i; ++j) {
        carried_.add(node.attr[2 * j]);
      }
    }
    const std::size_t carried = carried_.size();
    if (i < kFewAttributes ? !isCarried(node, i, name) : carried_.add(name) == carried) {
      at = attribute(at, name, node.attr[2 * i + 1]);
    }
  }
  return root_.attr[0] != nullptr ? defaults(at, node, i) : at;
}

inline char* Serialiser::attribute(char* at, const char* name, const char* value) {
  *at++ = ' ';
  at = out_.plain(at, name);
  *at++ = '=';
  *at++ = '"';
  at = out_.text<kValueEscape>(at, value);
  *at++ = '"';
  return at;
}

// Whether one of the first `count` attributes has the name.
inline bool Serialiser::isCarried(const XmlNode& node, std::size_t count, const char* name) const {
  if (count > kFewAttributes) {
    return carried_.find(name) != NameTable::kNone;
  }
  for (std::size_t i = 0; i != count; ++i) {
    const char* const other = node.attr[2 * i];
    if (other[0] == name[0] && std::strcmp(other, name) == 0) {
      return true;
    }
  }
  return false;
}

// The declared defaults that an element of `count` attributes does not carry.
char* Serialiser::defaults(char* at, const XmlNode& node, std::size_t count) {
  const std::size_t list = budget_ == 0 ? NameTable::kNone : declared_.find(node.name);
  if (list == NameTable::kNone) {
    return at;
  }
  for (const char** text = root_.attr[list] + 1; *text != nullptr; text += 3) {
    if (!isCarried(node, count, text[0])) {
      if (std::strlen(text[0]) + std::strlen(text[1]) >= budget_) {
        budget_ = 0;
        break;
      }
      const std::size_t before = out_.size(at);
      at = attribute(at, text[0], text[1]);
      budget_ -= std::min(budget_, out_.size(at) - before);
    }
  }
  return at;
}

char* Serialiser::instructions(char* at, char side, const char* before, const char* behind) {
  for (const char*** list = root_.pi; *list != nullptr; ++list) {
    const char** texts = *list + 1;
    std::size_t count = 0;
    while (texts[count] != nullptr) {
      ++count;
    }
    const char* const sides = texts[count + 1];
    for (std::size_t i = 0; i != count; ++i) {
      if (sides[i] != side) {
        continue;
      }
      const char* const blank = texts[i][0] == '\0' ? "" : " ";
      for (const char* text : {before, "<?", **list, blank, texts[i], "?>", behind}) {
        at = out_.plain(at, text);
      }
    }
  }
  return at;
}

}  // namespace

}  // namespace onu::xml::internal

namespace onu::xml {

char* toXml(const XmlNode* node, std::size_t* length) {
  const bool isText = node != nullptr && node->name != nullptr;
  const bool isRoot = isText && node->parent == nullptr;
  // Of a whole document what it was read from, as it may have been changed a little.
  const auto* const root = isRoot ? internal::rootOf(node) : nullptr;
  internal::Output out(1024 + (isRoot ? static_cast<std::size_t>(root->e - root->s) : 0));
  char* at = out.start();
  if (isText) {
    internal::Serialiser serialiser(*node, out);
    at = isRoot ? serialiser.instructions(at, '<', "", "\n") : at;
    at = serialiser.subtree(at, *node);
    at = isRoot ? serialiser.instructions(at, '>', "\n", "") : at;
  }
  if (length != nullptr) {
    *length = out.size(at);
  }
  return out.release(at);
}

}  // namespace onu::xml
