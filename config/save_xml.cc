#include "config/save_xml.h"

#include <cstdlib>
#include <memory>

namespace onu {
namespace {

struct Release {
  void operator()(char* text) const { std::free(text); }
};

}  // namespace

void saveXml(const char* path, const xml::XmlRoot* document) {
  saveXml(ReplaceableFile(path, O_WRONLY | O_CREAT), document);
}

void saveXml(const ReplaceableFile& file, const xml::XmlRoot* document) {
  std::size_t size = 0;
  const std::unique_ptr<char, Release> text(xml::toXml(&document->xml, &size));
  file.replace({text.get(), size});
}

}  // namespace onu
