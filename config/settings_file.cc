#include "config/settings_file.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/message.h"
#include "base/number.h"

namespace onu {

SettingsFile::SettingsFile(const char* path, Write write)
    : path_(path),
      write_(write),
      document_(write != Write::kNever && opened_.open(path, O_RDWR) ? parse()
                                                                     : xml::parseFile(path)) {
  if (!document_) {
    complain({"cannot read ", path, ": ", std::strerror(errno)});
  } else if (const char* const error = xml::error(document_.node()); *error != '\0') {
    complain({"error in ", path, ": ", error});
  }
}

// As xml::parseFd does, with the length that is known already. But a medium that fails half-way
// gives nothing, as errno says: what it could read must not replace the rest.
xml::XmlRoot* SettingsFile::parse() {
  const off_t length = opened_.state.st_size;
  const std::size_t size = length < PTRDIFF_MAX ? static_cast<std::size_t>(length) : 0;
  auto* const data = static_cast<char*>(std::malloc(size + 1));
  errno = 0;
  const std::size_t got = data == nullptr ? 0 : readFully(opened_.file.get(), data, size);
  if (got < size && errno != 0 && errno != EINTR) {
    std::free(data);
    return nullptr;
  }
  xml::XmlRoot* const root = xml::parseStr(data, got);
  root->len = -1;  // the document releases the data
  return root;
}

xml::XmlNode* SettingsFile::find(std::initializer_list<const char*> names) const {
  xml::XmlNode* node = document_.node();
  for (const char* const name : names) {
    node = xml::child(node, name);
  }
  return node;
}

bool SettingsFile::stores(const char* current, const std::string& value) {
  const bool stored = write_ == Write::kAlways || current == nullptr || value != current;
  changed_ = changed_ || stored;
  return stored;
}

void SettingsFile::setText(xml::XmlNode* node, const std::string& value) {
  if (node == nullptr) {
    failed_ = true;
  } else if (stores(node->txt, value)) {
    xml::setText(node, value.c_str());
  }
}

void SettingsFile::setAttribute(xml::XmlNode* node, const char* name, const std::string& value) {
  if (node == nullptr) {
    failed_ = true;
  } else if (stores(xml::attr(node, name), value)) {
    xml::setAttr(node, name, value.c_str());
  }
}

int SettingsFile::save() const {
  if (failed_ || !document_) {
    return -1;
  }
  if (changed_ || write_ == Write::kAlways) {
    if (*xml::error(document_.node()) != '\0') {
      complain({path_, " is rewritten without what stands behind its error"});
    }
    if (opened_.file) {
      saveXml(path_, opened_, document_.get());
    } else {
      saveXml(path_, document_.get());
    }
  }
  return 0;
}

int copyText(const xml::XmlNode* node, std::string& value) {
  if (node != nullptr) {
    value = node->txt;
  }
  return node == nullptr ? -1 : 0;
}

int copyAttribute(const xml::XmlNode* node, const char* name, std::string& value) {
  const char* const text = xml::attr(node, name);
  if (text != nullptr) {
    value = text;
  }
  return text == nullptr ? -1 : 0;
}

int loadText(const char* path, const char* group, const char* name, std::string& value) {
  const SettingsFile file(path);
  const xml::XmlNode* const parent = file.find({group});
  copyText(xml::child(parent, name), value);
  return parent == nullptr ? -1 : 0;
}

int storeText(const char* path, const char* group, const char* name, const std::string& value) {
  SettingsFile file(path, Write::kIfChanged);
  file.setText(file.find({group, name}), value);
  return file.save();
}

xml::XmlNode* findNamed(xml::XmlNode* first, const std::string& name) {
  xml::XmlNode* node = first;
  while (node != nullptr && name != node->txt) {
    node = node->next;
  }
  return node;
}

xml::XmlNode* findNumbered(xml::XmlNode* first, const std::string& number) {
  const std::int32_t n = toNumber(number);
  return n < 0 ? nullptr : xml::idx(first, n);
}

}  // namespace onu
