#include "config/config_data.h"

#include <utility>

#include "config/settings_file.h"
#include "frontend/message.h"

namespace onu {

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
  copyText(xml::child(group, "vendor"), info.vendor);
  copyText(xml::child(group, "model"), info.model);
  copyText(xml::child(group, "softwareVersion"), info.softwareVersion);
  copyText(xml::child(group, "onu_id"), info.onu_id);
  return 0;
}

int ConfigData::getIpInfo(IpInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const group = file.find({"ipInfo"});
  if (group == nullptr) {
    return -1;
  }
  copyText(xml::child(group, "ipAddress"), info.ipAddress);
  copyText(xml::child(group, "netMask"), info.netMask);
  copyText(xml::child(group, "onu_mac"), info.onu_mac);
  return 0;
}

int ConfigData::setIpInfo(const IpInfo& info) const {
  constexpr std::size_t kShortest = 8;
  if (info.ipAddress.size() < kShortest || info.netMask.size() < kShortest) {
    return -1;
  }
  const SettingsFile file(path_);
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
  const SettingsFile file(path_);
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
  const SettingsFile file(path_);
  return file.finish(editText(file.find({"account", account}), password, Write::kIfChanged));
}

int ConfigData::getVlanPorts(std::vector<VlanPortInfo>& ports) const {
  ports.clear();
  const SettingsFile file(path_);
  std::vector<VlanPortInfo> found;
  VlanPortInfo info;  // one for all, so that a missing value is the one of the port before
  for (const xml::XmlNode* port = file.find({"vlan", "port"}); port != nullptr; port = port->next) {
    copyText(port, info.port);
    copyAttribute(port, "mode", info.mode);
    if (!copyAttribute(port, "default_vid", info.default_vid)) {
      return -1;
    }
    copyAttribute(port, "vid_serial", info.vid_serial);
    copyAttribute(port, "vid_sum", info.vid_sum);
    found.push_back(info);
  }
  ports = std::move(found);
  return ports.empty() ? -1 : 0;
}

int ConfigData::setVlanPort(const VlanPortInfo& info) const {
  const SettingsFile file(path_);
  xml::XmlNode* const first = file.find({"vlan", "port"});
  if (first == nullptr) {
    return -1;
  }
  xml::XmlNode* const port = findNamed(first, info.port);
  if (port == nullptr) {
    return 0;
  }
  editAttribute(port, "mode", info.mode, Write::kAlways);
  if (!info.default_vid.empty()) {
    editAttribute(port, "default_vid", info.default_vid, Write::kAlways);
  }
  editAttribute(port, "vid_sum", info.vid_sum, Write::kAlways);
  return file.finish(editAttribute(port, "vid_serial", info.vid_serial, Write::kAlways));
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
  const SettingsFile file(path_);
  return file.finish(editText(file.find({"onu", "fec_mode"}), mode, Write::kIfChanged));
}

int ConfigData::getSn(std::string& sn) const {
  return copyText(SettingsFile(path_).find({"onu", "sn"}), sn) ? 0 : -1;
}

int ConfigData::setSn(const std::string& sn) const {
  const SettingsFile file(path_);
  return file.finish(editText(file.find({"onu", "sn"}), sn, Write::kIfChanged));
}

int ConfigData::getLoid(LoidInfo& info) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const loid = file.find({"onu", "loid"});
  copyAttribute(loid, "password", info.password);
  return copyText(loid, info.loid) ? 0 : -1;
}

int ConfigData::setLoid(const LoidInfo& info) const {
  const SettingsFile file(path_);
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
    copyAttribute(port, "phy_admin", info.phy_admin);
    copyAttribute(port, "flow_control", info.flow_control);
    copyAttribute(port, "auto_neg", info.auto_neg);
    copyAttribute(port, "mode", info.mode);
    copyAttribute(port, "mode_max", info.mode_max);
    ports.push_back(std::move(info));
  }
  return first == nullptr ? -1 : 0;
}

int ConfigData::setPhyPort(const PhyPortInfo& info) const {
  const SettingsFile file(path_);
  xml::XmlNode* const port = findNamed(file.find({"switch", "port"}), info.port);
  editAttribute(port, "phy_admin", info.phy_admin, Write::kAlways);
  editAttribute(port, "flow_control", info.flow_control, Write::kAlways);
  editAttribute(port, "auto_neg", info.auto_neg, Write::kAlways);
  return file.finish(editAttribute(port, "mode", info.mode, Write::kAlways));
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
  const SettingsFile file(path_);
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
  const SettingsFile file(path_);
  xml::XmlNode* const port = file.find({"storm", "port"});
  const Edit edit = editAttribute(port, "mode", mode, Write::kAlways);
  if (!threshold.empty()) {
    editAttribute(port, "bs_thresh", threshold, Write::kAlways);
  }
  return file.finish(edit);
}

}  // namespace onu
