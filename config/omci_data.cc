#include "config/omci_data.h"

#include "config/settings_file.h"

namespace onu {
namespace {

constexpr Field<OmciLoid> kLoidAttributes[] = {
    {"loid", &OmciLoid::loid},
    {"password", &OmciLoid::password},
};

}  // namespace

int OmciData::getOmciLoid(OmciLoid& info) const {
  const SettingsFile file(path_);
  return copyAttributes(file.find({"OMCI_MIB", "ctcLOIDAuth"}), kLoidAttributes, info);
}

int OmciData::setOmciLoid(const OmciLoid& info) const {
  SettingsFile file(path_, Write::kAlways);
  xml::XmlNode* const auth = file.find({"OMCI_MIB", "ctcLOIDAuth"});
  for (const auto& [name, member] : kLoidAttributes) {
    file.setAttribute(auth, name.data(), info.*member);
  }
  return file.save();
}

int OmciData::getPortIsolation(std::string& enabled) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const isolation = file.find({"OMCI_MIB", "ethPortIsolated"});
  copyAttribute(isolation, "enabled", enabled);
  return isolation == nullptr ? -1 : 0;
}

int OmciData::setPortIsolation(const std::string& enabled) const {
  SettingsFile file(path_, Write::kIfChanged);
  xml::XmlNode* const isolation = file.find({"OMCI_MIB", "ethPortIsolated"});
  if (xml::attr(isolation, "enabled") == nullptr) {
    return -1;
  }
  file.setAttribute(isolation, "enabled", enabled);
  return file.save();
}

}  // namespace onu
