#include "config/settings_file.h"

#include "config/save_xml.h"

namespace onu {

xml::XmlNode* SettingsFile::find(std::initializer_list<const char*> names) const {
  xml::XmlNode* node = document_.node();
  for (const char* const name : names) {
    node = xml::child(node, name);
  }
  return node;
}

int SettingsFile::finish(Edit edit) const {
  if (edit == Edit::kDone) {
    saveXml(path_, document_.get());
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
