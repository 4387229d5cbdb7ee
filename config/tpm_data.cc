#include "config/tpm_data.h"

#include "config/settings_file.h"

namespace onu {
namespace {

constexpr const char* kWeight = "weight";
constexpr const char* kSize = "size";

// The file has several modules and MACs, in the order of their numbers; only this one is set here.
constexpr int kModule = 2;

// Queue 0 of a list of queues; null when any element on the way to it is missing.
using FirstQueue = xml::XmlNode* (*)(const SettingsFile&);

xml::XmlNode* firstTxQueue(const SettingsFile& file) {
  xml::XmlNode* const modules = file.find({"port_init", "tx_module_parameters", "tx_mod"});
  return xml::child(xml::child(xml::idx(modules, kModule), "queue_map"), "queue");
}

xml::XmlNode* firstRxQueue(const SettingsFile& file) {
  xml::XmlNode* const macs = file.find({"port_init", "gmac_config", "gmac_rx_queues", "gmac"});
  return xml::child(xml::idx(macs, kModule), "queue");
}

int readQueues(const char* path, FirstQueue first, const char* attribute, QueueTexts& values) {
  const SettingsFile file(path);
  const xml::XmlNode* queue = first(file);
  for (std::string& value : values) {
    if (queue == nullptr) {
      break;
    }
    copyAttribute(queue, attribute, value);
    queue = queue->next;
  }
  return file.find({"port_init"}) == nullptr ? -1 : 0;
}

int writeQueue(const char* path, FirstQueue first, const char* attribute, const std::string& queue,
               const std::string& value) {
  SettingsFile file(path, Write::kAlways);
  file.setAttribute(findNumbered(first(file), queue), attribute, value);
  return file.save();
}

// Each of them is read and stored only where the file has it.
constexpr Field<MtuInfo> kMtuTexts[] = {
    {"mtu_setting_enabled", &MtuInfo::mtuSettingEnable},
    {"ipv4_mtu_ds", &MtuInfo::ipv4DsMtu},
    {"ipv4_mtu_us", &MtuInfo::ipv4UsMtu},
    {"ipv4_pppoe_mtu_us", &MtuInfo::ipv4pppoeUsMtu},
};

}  // namespace

int TpmData::getMtu(MtuInfo& info) const {
  return copyTexts(SettingsFile(path_).find({"mtu_setting"}), kMtuTexts, info);
}

int TpmData::setMtu(const MtuInfo& info) const {
  SettingsFile file(path_, Write::kAlways);
  const xml::XmlNode* const group = file.find({"mtu_setting"});
  for (const auto& [name, member] : kMtuTexts) {
    if (xml::XmlNode* const element = xml::child(group, name.data())) {
      file.setText(element, info.*member);
    }
  }
  return group == nullptr ? -1 : file.save();
}

int TpmData::getSchedMethod(std::string& method) const {
  return copyAttribute(firstTxQueue(SettingsFile(path_)), "sched_method", method);
}

int TpmData::setSchedMethod(const std::string& method) const {
  SettingsFile file(path_, Write::kAlways);
  for (xml::XmlNode* queue = firstTxQueue(file); queue != nullptr; queue = queue->next) {
    file.setAttribute(queue, "sched_method", method);
  }
  return file.find({"port_init"}) == nullptr ? -1 : file.save();
}

int TpmData::getQueueWeights(QueueTexts& weights) const {
  return readQueues(path_, firstTxQueue, kWeight, weights);
}

int TpmData::setQueueWeight(const std::string& queue, const std::string& weight) const {
  return writeQueue(path_, firstTxQueue, kWeight, queue, weight);
}

int TpmData::getTxQueueSizes(QueueTexts& sizes) const {
  return readQueues(path_, firstTxQueue, kSize, sizes);
}

int TpmData::setTxQueueSize(const std::string& queue, const std::string& size) const {
  return writeQueue(path_, firstTxQueue, kSize, queue, size);
}

int TpmData::getRxQueueSizes(QueueTexts& sizes) const {
  return readQueues(path_, firstRxQueue, kSize, sizes);
}

int TpmData::setRxQueueSize(const std::string& queue, const std::string& size) const {
  return writeQueue(path_, firstRxQueue, kSize, queue, size);
}

int TpmData::setFlowControl(const std::string& enabled) const {
  SettingsFile file(path_, Write::kIfChanged);
  xml::XmlNode* const element = file.find({"flow_control", "enabled"});
  if (element == nullptr) {
    return file.find({"flow_control"}) == nullptr ? -1 : 0;
  }
  file.setText(element, enabled);
  return file.save();
}

}  // namespace onu
