#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "base/field.h"
#include "config/save_xml.h"
#include "xml/document.h"

namespace onu {

// What a call stores: a getter nothing, a setter every value or those that differ.
enum class Write { kNever, kAlways, kIfChanged };

// One settings file, parsed for one accessor call. A malformed file gives the part of the tree that
// stands before the error; one that cannot be opened has no elements at all. Either is named on
// standard error. A setter's file stays open where it can be written and is no link: what was read
// is then what is replaced.
class SettingsFile {
 public:
  explicit SettingsFile(const char* path, Write write = Write::kNever);

  // The element reached from the root by these names, the first of each name; null when one is
  // missing. It belongs to this object.
  xml::XmlNode* find(std::initializer_list<const char*> names) const;

  // Set the element's text or attribute, with kIfChanged only when it differs; an attribute is
  // added where it is missing. The tree points at `value`, which must live until save(). Without an
  // element the setter has failed.
  void setText(xml::XmlNode* node, const std::string& value);
  void setAttribute(xml::XmlNode* node, const char* name, const std::string& value);

  // The last step of a setter, and its result: -1, with nothing written, when it has failed, else
  // 0. Writes the file back as a whole, with kIfChanged only when something has been set.
  int save() const;

 private:
  xml::XmlRoot* parse();
  bool stores(const char* current, const std::string& value);

  const char* path_;
  Write write_;
  OpenSettings opened_;
  bool failed_ = false;
  bool changed_ = false;
  xml::Document document_;
};

// Copies the element's text into `value`. -1, with `value` untouched, without an element, else 0.
int copyText(const xml::XmlNode* node, std::string& value);

// Copies the attribute into `value`. -1, with `value` untouched, without element or attribute.
int copyAttribute(const xml::XmlNode* node, const char* name, std::string& value);

// The same for the fields of a record: each from the child element of its name, or from the
// attribute. What is missing leaves its field as it is; -1 only without `node`.
template <typename Record, std::size_t count>
int copyTexts(const xml::XmlNode* node, const Field<Record> (&fields)[count], Record& record) {
  for (const auto& [name, member] : fields) {
    copyText(xml::child(node, name.data()), record.*member);
  }
  return node == nullptr ? -1 : 0;
}
template <typename Record, std::size_t count>
int copyAttributes(const xml::XmlNode* node, const Field<Record> (&fields)[count], Record& record) {
  for (const auto& [name, member] : fields) {
    copyAttribute(node, name.data(), record.*member);
  }
  return node == nullptr ? -1 : 0;
}

// A getter and a setter of one text of a group. The getter leaves `value` as it is where the group
// lacks the element, which is no failure; the setter writes when the text differs.
int loadText(const char* path, const char* group, const char* name, std::string& value);
int storeText(const char* path, const char* group, const char* name, const std::string& value);

// The element whose text is `name`, searched from `first` on among the elements of its own name;
// null when there is none. This is how the files name their ports.
xml::XmlNode* findNamed(xml::XmlNode* first, const std::string& name);

// The element of that decimal number, from 0 at `first` on, among the elements of its own name; a
// text without a number is 0. Null when there is none.
xml::XmlNode* findNumbered(xml::XmlNode* first, const std::string& number);

}  // namespace onu
