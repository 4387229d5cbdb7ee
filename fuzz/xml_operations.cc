// The first bytes choose operations, the rest is the document they work on.
#include "fuzz/xml_buffer.h"
#include "fuzz/xml_compare.h"

namespace onu::fuzz {

namespace {

constexpr const char* kNames[] = {"a", "b", "port", "mode", "x:y", "none", ""};
constexpr const char* kTexts[] = {"", "v", "a<b>&\"'\r\n\t", "\xC3\xA9",
                                  "a much longer text than sixteen"};

class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  std::size_t next(std::size_t below) {
    if (size_ == 0) {
      return 0;
    }
    --size_;
    return *data_++ % below;
  }
  template <typename T, std::size_t kCount>
  T of(T (&list)[kCount]) {
    return list[next(kCount)];
  }
  bool empty() const { return size_ == 0; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

xml::XmlNode* pick(Choices& choices, xml::XmlNode* node) {
  for (std::size_t steps = choices.next(4); steps != 0 && node->child != nullptr; --steps) {
    node = node->child;
    for (std::size_t n = choices.next(4); n != 0 && node->ordered != nullptr; --n) {
      node = node->ordered;
    }
  }
  return node;
}

void setCopies(Choices& choices, xml::XmlNode* node) {
  node->flags |= xml::kAttributesAllocated;
  xml::setAttr(node, strdup(choices.of(kNames)), strdup(choices.of(kTexts)));
  node->flags = static_cast<std::uint8_t>(node->flags & ~xml::kAttributesAllocated);
}

void operate(Choices& choices, xml::XmlNode* root) {
  xml::XmlNode* const node = pick(choices, root);
  switch (choices.next(8)) {
    case 0:
      xml::setText(node, choices.of(kTexts));
      break;
    case 1:
      xml::setAttr(node, choices.of(kNames), choices.of(kTexts));
      break;
    case 2:
      xml::setAttr(node, choices.of(kNames), nullptr);
      break;
    case 3:
      xml::addChild(node, choices.of(kNames), choices.next(8));
      break;
    case 4:
      xml::cut(node);
      break;
    case 5:
      setCopies(choices, node);
      break;
    case 6:
      xml::setText(node, strdup(choices.of(kTexts)));
      node->flags |= xml::kTextAllocated;
      break;
    default: {
      const char* const name = choices.of(kNames);
      const auto* found = xml::get(node, {{name, static_cast<int>(choices.next(3)) - 1}, {"b", 0}});
      xml::attr(found, name);
      const Buffer text(xml::toXml(node));
      REQUIRE(text != nullptr);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::size_t choiceCount = size < 32 ? size / 2 : 32;
  Choices choices(data, choiceCount);
  const Buffer input = copyOf(data + choiceCount, size - choiceCount);
  const xml::Document document(xml::parseStr(input.get(), size - choiceCount));
  while (!choices.empty()) {
    operate(choices, document.node());
  }

  for (const auto* node = document.node(); node != nullptr;
       node = following(node, document.node())) {
    std::multiset<const xml::XmlNode*> ordered;
    for (const auto* child = node->child; child != nullptr; child = child->ordered) {
      ordered.insert(child);
    }
    for (const auto* first = node->child; first != nullptr; first = first->sibling) {
      for (const auto* same = first; same != nullptr; same = same->next) {
        REQUIRE(ordered.erase(same) == 1);
        REQUIRE(std::strcmp(same->name, first->name) == 0);
      }
    }
    REQUIRE(ordered.empty());
  }
  const Buffer text(xml::toXml(document.node()));
  const Buffer again(xml::toXml(document.node()));
  REQUIRE(std::strcmp(text.get(), again.get()) == 0);
  return 0;
}

}  // namespace onu::fuzz
