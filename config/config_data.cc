#include "config/config_data.h"

#include <utility>

#include "base/message.h"
#include "config/settings_file.h"

namespace onu {
namespace {

constexpr Field<CommInfo> kCommTexts[] = {
    {"vendor", &CommInfo::vendor},
    {"model", &CommInfo::model},
    {"softwareVersion", &CommInfo::softwareVersion},
    {"onu_id", &CommInfo::onu_id},
};
constexpr Field<IpInfo> kIpTexts[] = {
    {"ipAddress", &IpInfo::ipAddress},
    {"netMask", &IpInfo::netMask},
    {"onu_mac", &IpInfo::onu_mac},
};
constexpr Field<VlanPortInfo> kVlanAttributes[] = {
    {"mode", &VlanPortInfo::mode},
    {"default_vid", &VlanPortInfo::default_vid},
    {"vid_sum", &VlanPortInfo::vid_sum},
    {"vid_serial", &VlanPortInfo::vid_serial},
};
constexpr Field<PhyPortInfo> kPhyAttributes[] = {
    {"phy_admin", &PhyPortInfo::phy_admin}, {"flow_control", &PhyPortInfo::flow_control},
    {"auto_neg", &PhyPortInfo::auto_neg},   {"mode", &PhyPortInfo::mode},
    {"mode_max", &PhyPortInfo::mode_max},
};

}  // namespace

ConfigData& ConfigData::getInstance() {
  static ConfigData instance;
  return instance;
}

int ConfigData::getCommInfo(CommInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const group = file.find({"commInfo"});
  if (group == nullptr) {
    return -1;
  }
  copyTexts(group, kCommTexts, info);
  return 0;
}

int ConfigData::getIpInfo(IpInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const group = file.find({"ipInfo"});
  if (group == nullptr) {
    return -1;
  }
  copyTexts(group, kIpTexts, info);
  return 0;
}

int ConfigData::setIpInfo(const IpInfo& info) const {
  constexpr std::size_t kShortest = 8;
  if (info.ipAddress.size() < kShortest || info.netMask.size() < kShortest) {
    return -1;
  }
  const EditedSettings file(path_);
  xml::XmlNode* const group = file.find({"ipInfo"});
  if (group == nullptr) {
    return -1;
  }
  const Edit address = editText(xml::child(group, "ipAddress"), info.ipAddress, Write::kIfChanged);
  const Edit mask = editText(xml::child(group, "netMask"), info.netMask, Write::kIfChanged);
  if (address == Edit::kFailed || mask == Edit::kFailed) {
    printLine("set ip address type  error");
    return -1;
  }
  return file.finish(address == Edit::kDone ? address : mask);
}

int ConfigData::setMac(const std::string& mac) const {
  const EditedSettings file(path_);
  xml::XmlNode* const group = file.find({"ipInfo"});
  if (group == nullptr) {
    return -1;
  }
  const Edit edit = editText(xml::child(group, "onu_mac"), mac, Write::kAlways);
  if (edit == Edit::kFailed) {
    printLine("set mac address   fail");
  }
  return file.finish(edit);
}

int ConfigData::getAccountPassword(const std::string& account, std::string& password) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const group = file.find({"account"});
  if (group == nullptr) {
    return -1;
  }
  copyText(xml::child(group, account.c_str()), password);
  return 0;
}

int ConfigData::getAdminPassword(std::string& password) const {
  return getAccountPassword("admin", password);
}

int ConfigData::getUserPassword(std::string& password) const {
  return getAccountPassword("user", password);
}

int ConfigData::setAdminPassword(const std::string& password) const {
  return setAccountPassword("admin", password);
}

int ConfigData::setUserPassword(const std::string& password) const {
  return setAccountPassword("user", password);
}

int ConfigData::setAccountPassword(const char* account, const std::string& password) const {
  const EditedSettings file(path_);
  return file.finish(editText(file.find({"account", account}), password, Write::kIfChanged));
}

int ConfigData::getVlanPorts(std::vector<VlanPortInfo>& ports) const {
  ports.clear();
  const SettingsFile file(path_);
  std::vector<VlanPortInfo> found;
  VlanPortInfo info;  // one for all, so that a missing value is the one of the port before
  for (const xml::XmlNode* port = file.find({"vlan", "port"}); port != nullptr; port = port->next) {
    if (xml::attr(port, "default_vid") == nullptr) {
      return -1;
    }
    copyText(port, info.port);
    copyAttributes(port, kVlanAttributes, info);
    found.push_back(info);
  }
  ports = std::move(found);
  return ports.empty() ? -1 : 0;
}

int ConfigData::setVlanPort(const VlanPortInfo& info) const {
  const EditedSettings file(path_);
  xml::XmlNode* const first = file.find({"vlan", "port"});
  if (first == nullptr) {
    return -1;
  }
  xml::XmlNode* const port = findNamed(first, info.port);
  if (port == nullptr) {
    return 0;
  }
  for (const auto& [name, member] : kVlanAttributes) {
    if (member != &VlanPortInfo::default_vid || !info.default_vid.empty()) {
      editAttribute(port, name.data(), info.*member, Write::kAlways);
    }
  }
  return file.finish(Edit::kDone);
}

int ConfigData::getFec(FecInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const mode = file.find({"onu", "fec_mode"});
  const xml::XmlNode* const ability = file.find({"onu", "fec_ability"});
  if (mode == nullptr || ability == nullptr) {
    return -1;
  }
  copyText(mode, info.fec_mode);
  copyText(ability, info.fec_ability);
  return 0;
}

int ConfigData::setFecMode(const std::string& mode) const {
  const EditedSettings file(path_);
  return file.finish(editText(file.find({"onu", "fec_mode"}), mode, Write::kIfChanged));
}

int ConfigData::getSn(std::string& sn) const {
  return copyText(SettingsFile(path_).find({"onu", "sn"}), sn) ? 0 : -1;
}

int ConfigData::setSn(const std::string& sn) const {
  const EditedSettings file(path_);
  return file.finish(editText(file.find({"onu", "sn"}), sn, Write::kIfChanged));
}

int ConfigData::getLoid(LoidInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const loid = file.find({"onu", "loid"});
  copyAttribute(loid, "password", info.password);
  return copyText(loid, info.loid) ? 0 : -1;
}

int ConfigData::setLoid(const LoidInfo& info) const {
  const EditedSettings file(path_);
  xml::XmlNode* const loid = file.find({"onu", "loid"});
  editText(loid, info.loid, Write::kAlways);
  return file.finish(editAttribute(loid, "password", info.password, Write::kAlways));
}

int ConfigData::getPhyPorts(std::vector<PhyPortInfo>& ports) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const first = file.find({"switch", "port"});
  for (const xml::XmlNode* port = first; port != nullptr; port = port->next) {
    PhyPortInfo info;
    copyText(port, info.port);
    copyAttributes(port, kPhyAttributes, info);
    ports.push_back(std::move(info));
  }
  return first == nullptr ? -1 : 0;
}

int ConfigData::setPhyPort(const PhyPortInfo& info) const {
  const EditedSettings file(path_);
  xml::XmlNode* const port = findNamed(file.find({"switch", "port"}), info.port);
  Edit edit = Edit::kFailed;
  for (const auto& [name, member] : kPhyAttributes) {
    if (member != &PhyPortInfo::mode_max) {
      edit = editAttribute(port, name.data(), info.*member, Write::kAlways);
    }
  }
  return file.finish(edit);
}

int ConfigData::getMacAgingTime(const std::string& port, std::string& time) const {
  const SettingsFile file(path_);
  xml::XmlNode* element = findNamed(file.find({"mac_aging_time", "eth_port"}), port);
  while (element != nullptr && !copyAttribute(element, "time", time)) {
    element = findNamed(element->next, port);
  }
  return element == nullptr ? -1 : 0;
}

int ConfigData::setMacAgingTime(const std::string& port, const std::string& time) const {
  const EditedSettings file(path_);
  return file.finish(editAttribute(findNamed(file.find({"mac_aging_time", "eth_port"}), port),
                                   "time", time, Write::kIfChanged));
}

int ConfigData::getStorm(std::string& mode, std::string& threshold) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const port = file.find({"storm", "port"});
  copyAttribute(port, "mode", mode);
  copyAttribute(port, "bs_thresh", threshold);
  return port == nullptr ? -1 : 0;
}

int ConfigData::setStorm(const std::string& mode, const std::string& threshold) const {
  const EditedSettings file(path_);
  xml::XmlNode* const port = file.find({"storm", "port"});
  const Edit edit = editAttribute(port, "mode", mode, Write::kAlways);
  if (!threshold.empty()) {
    editAttribute(port, "bs_thresh", threshold, Write::kAlways);
  }
  return file.finish(edit);
}

}  // namespace onu
