#include "config/config_data.h"

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

int readFec(const SettingsFile& file, FecInfo& info) {
  const xml::XmlNode* const mode = file.find({"onu", "fec_mode"});
  const xml::XmlNode* const ability = file.find({"onu", "fec_ability"});
  if (mode == nullptr || ability == nullptr) {
    return -1;
  }
  copyText(mode, info.fec_mode);
  return copyText(ability, info.fec_ability);
}

int readLoid(const SettingsFile& file, LoidInfo& info) {
  const xml::XmlNode* const loid = file.find({"onu", "loid"});
  copyAttribute(loid, "password", info.password);
  return copyText(loid, info.loid);
}

int readVlanPorts(const SettingsFile& file, std::vector<VlanPortInfo>& ports) {
  ports.clear();
  VlanPortInfo info;  // one for all, so that a missing value is the one of the port before
  for (const xml::XmlNode* port = file.find({"vlan", "port"}); port != nullptr; port = port->next) {
    if (xml::attr(port, "default_vid") == nullptr) {
      ports.clear();
      break;
    }
    copyText(port, info.port);
    copyAttributes(port, kVlanAttributes, info);
    ports.push_back(info);
  }
  return ports.empty() ? -1 : 0;
}

int readPhyPorts(const SettingsFile& file, std::vector<PhyPortInfo>& ports) {
  const xml::XmlNode* const first = file.find({"switch", "port"});
  for (const xml::XmlNode* port = first; port != nullptr; port = port->next) {
    PhyPortInfo& info = ports.emplace_back();
    copyText(port, info.port);
    copyAttributes(port, kPhyAttributes, info);
  }
  return first == nullptr ? -1 : 0;
}

// The last step of a setter of ipInfo, which says when the group lacks an element.
int saveIpInfo(const SettingsFile& file, std::string_view failure) {
  const int result = file.save();
  if (result != 0 && file.find({"ipInfo"}) != nullptr) {
    printLine({failure});
  }
  return result;
}

}  // namespace

int ConfigData::getCommInfo(CommInfo& info) const {
  return copyTexts(SettingsFile(path_).find({"commInfo"}), kCommTexts, info);
}

int ConfigData::getIpInfo(IpInfo& info) const {
  return copyTexts(SettingsFile(path_).find({"ipInfo"}), kIpTexts, info);
}

void ConfigData::getIdentity(UnitIdentity& identity) const {
  const SettingsFile file(path_);
  copyTexts(file.find({"commInfo"}), kCommTexts, identity.comm);
  copyTexts(file.find({"ipInfo"}), kIpTexts, identity.ip);
  readFec(file, identity.fec);
  readLoid(file, identity.loid);
}

int ConfigData::setIpInfo(const IpInfo& info) const {
  constexpr std::size_t kShortest = 8;
  if (info.ipAddress.size() < kShortest || info.netMask.size() < kShortest) {
    return -1;
  }
  SettingsFile file(path_, Write::kIfChanged);
  file.setText(file.find({"ipInfo", "ipAddress"}), info.ipAddress);
  file.setText(file.find({"ipInfo", "netMask"}), info.netMask);
  return saveIpInfo(file, "set ip address type  error");
}

int ConfigData::setMac(const std::string& mac) const {
  SettingsFile file(path_, Write::kAlways);
  file.setText(file.find({"ipInfo", "onu_mac"}), mac);
  return saveIpInfo(file, "set mac address   fail");
}

int ConfigData::getAccountPassword(const std::string& account, std::string& password) const {
  return loadText(path_, "account", account.c_str(), password);
}

int ConfigData::getAdminPassword(std::string& password) const {
  return getAccountPassword("admin", password);
}

int ConfigData::getUserPassword(std::string& password) const {
  return getAccountPassword("user", password);
}

int ConfigData::setAdminPassword(const std::string& password) const {
  return storeText(path_, "account", "admin", password);
}

int ConfigData::setUserPassword(const std::string& password) const {
  return storeText(path_, "account", "user", password);
}

int ConfigData::getVlanPorts(std::vector<VlanPortInfo>& ports) const {
  return readVlanPorts(SettingsFile(path_), ports);
}

int ConfigData::setVlanPort(const VlanPortInfo& info) const {
  SettingsFile file(path_, Write::kAlways);
  xml::XmlNode* const first = file.find({"vlan", "port"});
  xml::XmlNode* const port = findNamed(first, info.port);
  if (port == nullptr) {
    return first == nullptr ? -1 : 0;
  }
  for (const auto& [name, member] : kVlanAttributes) {
    if (member != &VlanPortInfo::default_vid || !info.default_vid.empty()) {
      file.setAttribute(port, name.data(), info.*member);
    }
  }
  return file.save();
}

int ConfigData::getFec(FecInfo& info) const { return readFec(SettingsFile(path_), info); }

int ConfigData::setFecMode(const std::string& mode) const {
  return storeText(path_, "onu", "fec_mode", mode);
}

int ConfigData::getSn(std::string& sn) const {
  return copyText(SettingsFile(path_).find({"onu", "sn"}), sn);
}

int ConfigData::setSn(const std::string& sn) const { return storeText(path_, "onu", "sn", sn); }

int ConfigData::getLoid(LoidInfo& info) const { return readLoid(SettingsFile(path_), info); }

int ConfigData::setLoid(const LoidInfo& info) const {
  SettingsFile file(path_, Write::kAlways);
  xml::XmlNode* const loid = file.find({"onu", "loid"});
  file.setText(loid, info.loid);
  file.setAttribute(loid, "password", info.password);
  return file.save();
}

int ConfigData::getPhyPorts(std::vector<PhyPortInfo>& ports) const {
  return readPhyPorts(SettingsFile(path_), ports);
}

void ConfigData::getPorts(std::vector<VlanPortInfo>& vlan, std::vector<PhyPortInfo>& phy) const {
  const SettingsFile file(path_);
  readVlanPorts(file, vlan);
  readPhyPorts(file, phy);
}

int ConfigData::setPhyPort(const PhyPortInfo& info) const {
  SettingsFile file(path_, Write::kAlways);
  xml::XmlNode* const port = findNamed(file.find({"switch", "port"}), info.port);
  for (const auto& [name, member] : kPhyAttributes) {
    if (member != &PhyPortInfo::mode_max) {
      file.setAttribute(port, name.data(), info.*member);
    }
  }
  return file.save();
}

int ConfigData::getMacAgingTime(const std::string& port, std::string& time) const {
  const SettingsFile file(path_);
  xml::XmlNode* element = findNamed(file.find({"mac_aging_time", "eth_port"}), port);
  while (element != nullptr && copyAttribute(element, "time", time) != 0) {
    element = findNamed(element->next, port);
  }
  return element == nullptr ? -1 : 0;
}

int ConfigData::setMacAgingTime(const std::string& port, const std::string& time) const {
  SettingsFile file(path_, Write::kIfChanged);
  file.setAttribute(findNamed(file.find({"mac_aging_time", "eth_port"}), port), "time", time);
  return file.save();
}

int ConfigData::getStorm(std::string& mode, std::string& threshold) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const port = file.find({"storm", "port"});
  copyAttribute(port, "mode", mode);
  copyAttribute(port, "bs_thresh", threshold);
  return port == nullptr ? -1 : 0;
}

int ConfigData::setStorm(const std::string& mode, const std::string& threshold) const {
  SettingsFile file(path_, Write::kAlways);
  xml::XmlNode* const port = file.find({"storm", "port"});
  file.setAttribute(port, "mode", mode);
  if (!threshold.empty()) {
    file.setAttribute(port, "bs_thresh", threshold);
  }
  return file.save();
}

}  // namespace onu
