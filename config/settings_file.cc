#include "config/settings_file.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/message.h"
#include "config/save_xml.h"

namespace onu {
namespace {

// As xml::parseFile does, with the length that is known already.
xml::XmlRoot* parse(const ReplaceableFile& file) {
  const std::size_t size = file.size() < PTRDIFF_MAX ? static_cast<std::size_t>(file.size()) : 0;
  auto* const data = static_cast<char*>(std::malloc(size + 1));
  const std::size_t got = data == nullptr ? 0 : readFully(file.fd(), data, size);
  xml::XmlRoot* const root = xml::parseStr(data, got);
  root->len = -1;  // the document releases the data
  return root;
}

}  // namespace

SettingsFile::SettingsFile(const char* path) : SettingsFile(path, xml::parseFile(path)) {}

SettingsFile::SettingsFile(const char* path, xml::XmlRoot* document)
    : path_(path), document_(document) {
  if (!document_) {
    complain({"cannot read ", path, ": ", std::strerror(errno)});
  } else if (const char* const error = xml::error(document_.node()); *error != '\0') {
    complain({"error in ", path, ": ", error});
  }
}

xml::XmlNode* SettingsFile::find(std::initializer_list<const char*> names) const {
  xml::XmlNode* node = document_.node();
  for (const char* const name : names) {
    node = xml::child(node, name);
  }
  return node;
}

EditedSettings::EditedSettings(const char* path)
    : ReplaceableFile(path, O_RDWR),
      SettingsFile(path, isOpen() ? parse(*this) : xml::parseFile(path)) {}

int EditedSettings::finish(Edit edit) const {
  if (edit == Edit::kDone) {
    if (*xml::error(document_.node()) != '\0') {
      complain({path_, " is rewritten without what stands behind its error"});
    }
    saveXml(*this, document_.get());
  }
  return edit == Edit::kFailed ? -1 : 0;
}

int copyText(const xml::XmlNode* node, std::string& value) {
  if (node == nullptr) {
    return -1;
  }
  value = node->txt;
  return 0;
}

int copyAttribute(const xml::XmlNode* node, const char* name, std::string& value) {
  const char* const text = xml::attr(node, name);
  if (text == nullptr) {
    return -1;
  }
  value = text;
  return 0;
}

Edit editText(xml::XmlNode* node, const std::string& value, Write write) {
  if (node == nullptr) {
    return Edit::kFailed;
  }
  if (write == Write::kIfChanged && value == node->txt) {
    return Edit::kSame;
  }
  xml::setText(node, value.c_str());
  return Edit::kDone;
}

Edit editAttribute(xml::XmlNode* node, const char* name, const std::string& value, Write write) {
  if (node == nullptr) {
    return Edit::kFailed;
  }
  const char* const current = write == Write::kIfChanged ? xml::attr(node, name) : nullptr;
  if (current != nullptr && value == current) {
    return Edit::kSame;
  }
  xml::setAttr(node, name, value.c_str());
  return Edit::kDone;
}

int storeText(const char* path, std::initializer_list<const char*> names,
              const std::string& value) {
  const EditedSettings file(path);
  return file.finish(editText(file.find(names), value, Write::kIfChanged));
}

xml::XmlNode* findNamed(xml::XmlNode* first, const std::string& name) {
  xml::XmlNode* node = first;
  while (node != nullptr && name != node->txt) {
    node = node->next;
  }
  return node;
}

}  // namespace onu
