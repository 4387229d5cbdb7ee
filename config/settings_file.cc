#include "config/settings_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/message.h"
#include "config/save_xml.h"

namespace onu {
namespace {

xml::XmlRoot* parse(const ReplaceableFile& file) {
  auto* const data = static_cast<char*>(std::malloc(file.size() + 1));
  const std::size_t size = data == nullptr ? 0 : readFully(file.fd(), data, file.size());
  xml::XmlRoot* const root = xml::parseStr(data, size);
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

bool copyText(const xml::XmlNode* node, std::string& value) {
  if (node == nullptr) {
    return false;
  }
  value = node->txt;
  return true;
}

bool copyAttribute(const xml::XmlNode* node, const char* name, std::string& value) {
  const char* const text = xml::attr(node, name);
  if (text == nullptr) {
    return false;
  }
  value = text;
  return true;
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

xml::XmlNode* findNamed(xml::XmlNode* first, const std::string& name) {
  xml::XmlNode* node = first;
  while (node != nullptr && name != node->txt) {
    node = node->next;
  }
  return node;
}

}  // namespace onu
