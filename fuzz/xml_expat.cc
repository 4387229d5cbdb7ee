// Wherever expat accepts a document without a document type, our tree says the same.
//
// Two differences are wanted and left out: expat turns the line ends of CDATA sections into line
// feeds, we keep them; some of its versions take half a surrogate pair and whatever follows it for
// a character, we put U+FFFD in its place. Encodings other than UTF-8 and UTF-16 are expat's alone.
#include <expat.h>

#include <algorithm>

#include "fuzz/xml_buffer.h"
#include "fuzz/xml_compare.h"

namespace onu::fuzz {

namespace {

struct Element {
  std::string name;
  Pairs attributes;
  std::string text;
  std::size_t off = 0;
  std::vector<Element> children;
};

struct Collector {
  XML_Parser parser;
  Element top;
  std::vector<std::size_t> path;  // which child of which
  bool hasDoctype = false;
  bool hasCdata = false;

  Element& open() {
    Element* element = &top;
    for (const std::size_t i : path) {
      element = &element->children[i];
    }
    return *element;
  }
};

void onStart(void* data, const char* name, const char** attributes) {
  auto& collector = *static_cast<Collector*>(data);
  if (collector.path.size() > 200) {
    XML_StopParser(collector.parser, XML_FALSE);
    return;
  }
  Element element;
  element.name = name;
  for (; *attributes != nullptr; attributes += 2) {
    element.attributes.emplace_back(attributes[0], attributes[1]);
  }
  Element& parent = collector.open();
  element.off = parent.text.size();
  collector.path.push_back(parent.children.size());
  parent.children.push_back(std::move(element));
}

void onEnd(void* data, const char*) { static_cast<Collector*>(data)->path.pop_back(); }

void onText(void* data, const char* text, int length) {
  static_cast<Collector*>(data)->open().text.append(text, static_cast<std::size_t>(length));
}

void onDoctype(void* data, const char*, const char*, const char*, int) {
  auto& collector = *static_cast<Collector*>(data);
  collector.hasDoctype = true;
  XML_StopParser(collector.parser, XML_FALSE);
}

void onCdata(void* data) { static_cast<Collector*>(data)->hasCdata = true; }

void compare(const xml::XmlNode& ours, const Element& theirs) {
  REQUIRE(theirs.name == ours.name);
  REQUIRE(theirs.text == ours.txt);
  Pairs pairs;
  for (const char** pair = ours.attr; *pair != nullptr; pair += 2) {
    pairs.emplace_back(pair[0], pair[1]);
  }
  REQUIRE(theirs.attributes == pairs);
  const xml::XmlNode* child = ours.child;
  for (const Element& element : theirs.children) {
    REQUIRE(child != nullptr);
    REQUIRE(child->off == element.off);
    compare(*child, element);
    child = child->ordered;
  }
  REQUIRE(child == nullptr);
}

bool hasHalfPair(const std::uint8_t* data, std::size_t size) {
  const std::size_t high = data[0] == 0xFE ? 0 : 1;
  bool isOpen = false;  // the first half stands before
  for (std::size_t i = 2; i + 1 < size; i += 2) {
    const bool isFirst = (data[i + high] & 0xFC) == 0xD8;
    const bool isSecond = (data[i + high] & 0xFC) == 0xDC;
    if (isOpen != isSecond) {
      return true;
    }
    isOpen = isFirst;
  }
  return isOpen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool isUtf16 =
      size >= 2 && data[0] + data[1] == 0xFE + 0xFF && (data[0] == 0xFE || data[1] == 0xFE);
  Collector collector;
  collector.parser = XML_ParserCreate(isUtf16 ? "UTF-16" : "UTF-8");
  XML_SetUserData(collector.parser, &collector);
  XML_SetElementHandler(collector.parser, onStart, onEnd);
  XML_SetCharacterDataHandler(collector.parser, onText);
  XML_SetStartDoctypeDeclHandler(collector.parser, onDoctype);
  XML_SetStartCdataSectionHandler(collector.parser, onCdata);
  const bool accepted = XML_Parse(collector.parser, reinterpret_cast<const char*>(data),
                                  static_cast<int>(size), XML_TRUE) == XML_STATUS_OK;
  XML_ParserFree(collector.parser);
  const bool hasReturn = std::find(data, data + size, '\r') != data + size;
  // expat takes a zero byte for a sign of UTF-16 even without its mark.
  const bool isGuessed = !isUtf16 && std::find(data, data + size, '\0') != data + size;
  if (!accepted || isGuessed || collector.hasDoctype || (collector.hasCdata && hasReturn)) {
    return 0;
  }
  if (isUtf16 && hasHalfPair(data, size)) {
    return 0;
  }

  const Buffer input = copyOf(data, size);
  const xml::Document document(xml::parseStr(input.get(), size));
  REQUIRE(document->err[0] == '\0');
  compare(document->xml, collector.top.children.at(0));
  return 0;
}

}  // namespace onu::fuzz
