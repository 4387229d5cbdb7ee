// Any input: the tree holds together, and what is written from it parses to an equal tree and to
// the same text again.
#include "fuzz/xml_buffer.h"
#include "fuzz/xml_compare.h"

namespace onu::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Buffer input = copyOf(data, size);
  const xml::Document document(xml::parseStr(input.get(), size));
  checkTree(*document.get());
  std::size_t length = 0;
  const Buffer text(xml::toXml(document.node(), &length));
  REQUIRE(std::strlen(text.get()) == length);
  if (document->xml.name == nullptr) {
    REQUIRE(length == 0);
    REQUIRE(document->err[0] != '\0');
    return 0;
  }

  const Buffer again = copyOf(text.get(), length);
  const xml::Document second(xml::parseStr(again.get(), length));
  REQUIRE(second->err[0] == '\0');
  checkTree(*second.get());
  compareTrees(*document.get(), *second.get());
  const Buffer secondText(xml::toXml(second.node()));
  REQUIRE(std::strcmp(text.get(), secondText.get()) == 0);
  return 0;
}

}  // namespace onu::fuzz
