#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "base/field.h"
#include "config/replace_file.h"
#include "xml/document.h"

namespace onu {

// What an edit of a settings tree came to.
enum class Edit {
  kFailed,  // the element is missing
  kSame,    // the value was there already
  kDone,
};

enum class Write { kAlways, kIfChanged };

// One settings file, parsed for one accessor call. A malformed file gives the part of the tree that
// stands before the error; one that cannot be opened has no elements at all. Either is named on
// standard error.
class SettingsFile {
 public:
  explicit SettingsFile(const char* path);

  // The element reached from the root by these names, the first of each name; null when one is
  // missing. It belongs to this object.
  xml::XmlNode* find(std::initializer_list<const char*> names) const;

 protected:
  // Takes over what was parsed of `path`, null when it could not be opened, as errno says.
  SettingsFile(const char* path, xml::XmlRoot* document);

  const char* path_;
  xml::Document document_;
};

// The same for a setter, whose last step is finish(). The file that was read is the one that is
// replaced, so it is open until then.
class EditedSettings : private ReplaceableFile, public SettingsFile {
 public:
  explicit EditedSettings(const char* path);

  // Writes the file back when `edit` has changed the tree. Returns the setter's result, -1 for a
  // failed edit and else 0. The texts of the edits must still be alive.
  int finish(Edit edit) const;
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

// Sets the element's text, with kIfChanged only when it differs. The tree points at `value`.
Edit editText(xml::XmlNode* node, const std::string& value, Write write);

// The same for an attribute, which is added where it is missing.
Edit editAttribute(xml::XmlNode* node, const char* name, const std::string& value, Write write);

// A setter of one text: writes the file back when the element's text differs. Returns 0, or -1
// without the file or the element.
int storeText(const char* path, std::initializer_list<const char*> names, const std::string& value);

// The element whose text is `name`, searched from `first` on among the elements of its own name;
// null when there is none. This is how the files name their ports.
xml::XmlNode* findNamed(xml::XmlNode* first, const std::string& name);

}  // namespace onu
