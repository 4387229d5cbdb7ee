#include "config/omci_data.h"

#include "config/settings_file.h"

namespace onu {
namespace {

constexpr Field<OmciLoid> kLoidAttributes[] = {
    {"loid", &OmciLoid::loid},
    {"password", &OmciLoid::password},
};

}  // namespace

OmciData& OmciData::getInstance() {
  static OmciData instance;
  return instance;
}

int OmciData::getOmciLoid(OmciLoid& info) const {
  const SettingsFile file(path_);
  return copyAttributes(file.find({"OMCI_MIB", "ctcLOIDAuth"}), kLoidAttributes, info);
}

int OmciData::setOmciLoid(const OmciLoid& info) const {
  const EditedSettings file(path_);
  xml::XmlNode* const auth = file.find({"OMCI_MIB", "ctcLOIDAuth"});
  editAttribute(auth, "loid", info.loid, Write::kAlways);
  return file.finish(editAttribute(auth, "password", info.password, Write::kAlways));
}

int OmciData::getPortIsolation(std::string& enabled) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const isolation = file.find({"OMCI_MIB", "ethPortIsolated"});
  copyAttribute(isolation, "enabled", enabled);
  return isolation == nullptr ? -1 : 0;
}

int OmciData::setPortIsolation(const std::string& enabled) const {
  const EditedSettings file(path_);
  xml::XmlNode* const isolation = file.find({"OMCI_MIB", "ethPortIsolated"});
  if (xml::attr(isolation, "enabled") == nullptr) {
    return -1;
  }
  return file.finish(editAttribute(isolation, "enabled", enabled, Write::kIfChanged));
}

}  // namespace onu
