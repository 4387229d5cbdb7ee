#include "config/profile_data.h"

#include <string_view>

#include "base/number.h"
#include "config/profile_values.h"
#include "config/settings_file.h"

namespace onu {
namespace {

std::string asIs(std::string_view value) { return std::string(value); }

// A label of the profile, the field it fills and how its value is taken.
template <typename Record>
struct Entry {
  Field<Record> field;
  std::string (*take)(std::string_view value) = asIs;
};

constexpr Entry<VendorInfo> kVendorEntries[] = {
    {{"ONU vendor name", &VendorInfo::vendor}},
    {{"Model for eOAM", &VendorInfo::model}},
    {{"HW version", &VendorInfo::hwVersion}},
    {{"SW version", &VendorInfo::swVersion}},
};

constexpr Entry<ChipInfo> kChipEntries[] = {
    {{"Chip vendor ID", &ChipInfo::chipId}, withoutPrefix},
    {{"Chip revision", &ChipInfo::revision}, withoutPrefix},
    {{"Chip version", &ChipInfo::icDate}, chipDate},
    {{"Chip model", &ChipInfo::model}, withoutPrefix},
};

constexpr Entry<CapabilityInfo> kCapabilityEntries[] = {
    {{"ONU type", &CapabilityInfo::onuType}},
    {{"GE Ethernet port number", &CapabilityInfo::geNum}},
    {{"GE Ethernet port bitmap", &CapabilityInfo::geBitmap}},
    {{"FE Ethernet port number", &CapabilityInfo::feNum}},
    {{"FE Ethernet port bitmap", &CapabilityInfo::feBitmapLsb}},
    {{"FE Ethernet port bitmap", &CapabilityInfo::feBitmapMsb}},
    {{"POTS port number", &CapabilityInfo::potsNum}},
    {{"Maximum upstream queue per port", &CapabilityInfo::usQueNum}},
    {{"Maximum upstream queue per port", &CapabilityInfo::maxUsQueue}},
    {{"Maximum downstream queue per port", &CapabilityInfo::dsQueNum}},
    {{"Maximum downstream queue per port", &CapabilityInfo::maxDsQueue}},
    {{"Battery backup support capability", &CapabilityInfo::batteryBackup}},
};

struct Firmware {
  std::string version;
};

constexpr Entry<Firmware> kFirmwareEntries[] = {
    {{"Firmware version", &Firmware::version}, dottedVersion},
};

enum class Chain { kMissing, kEmpty, kRead };

// Fills `record` from the chain of one of the profile's groups.
template <typename Record, std::size_t count>
Chain readChain(const SettingsFile& file, const char* group, const Entry<Record> (&entries)[count],
                Record& record) {
  const xml::XmlNode* const parent = file.find({group});
  if (parent == nullptr) {
    return Chain::kMissing;
  }
  const xml::XmlNode* const first = xml::child(parent, "attrib");
  for (const xml::XmlNode* attrib = first; attrib != nullptr; attrib = attrib->next) {
    const char* const name = xml::attr(attrib, "name");
    const char* const value = xml::attr(attrib, "value");
    if (name == nullptr || value == nullptr) {
      break;
    }
    const std::string_view label = name;
    for (const auto& [field, take] : entries) {
      if (field.name == label) {
        record.*field.member = take(value);
      }
    }
  }
  return first == nullptr ? Chain::kEmpty : Chain::kRead;
}

int toResult(Chain chain) { return chain == Chain::kMissing ? -1 : 0; }

int readVendorInfo(const SettingsFile& file, VendorInfo& info) {
  return toResult(readChain(file, "Vendor", kVendorEntries, info));
}

int readChipInfo(const SettingsFile& file, ChipInfo& info) {
  return toResult(readChain(file, "Vendor", kChipEntries, info));
}

int readCapability(const SettingsFile& file, CapabilityInfo& info) {
  const Chain chain = readChain(file, "Capability", kCapabilityEntries, info);
  if (chain == Chain::kRead) {
    info.onuType = onuTypeName(info.onuType);
  }
  return toResult(chain);
}

int readFirmwareVersion(const SettingsFile& file, std::string& version) {
  Firmware firmware;
  const Chain chain = readChain(file, "Vendor", kFirmwareEntries, firmware);
  if (chain == Chain::kRead) {
    version = firmware.version;
  }
  return toResult(chain);
}

xml::XmlNode* findLoopPort(const SettingsFile& file, const std::string& port) {
  const std::int32_t number = toNumber(port);
  return number < 0 ? nullptr : xml::idx(file.find({"ONU_LOOPDETECT", "port"}), number);
}

}  // namespace

ProfileData& ProfileData::getInstance() {
  static ProfileData instance;
  return instance;
}

int ProfileData::getVendorInfo(VendorInfo& info) const {
  return readVendorInfo(SettingsFile(kProfilePath), info);
}

int ProfileData::getChipInfo(ChipInfo& info) const {
  return readChipInfo(SettingsFile(kProfilePath), info);
}

int ProfileData::getCapability(CapabilityInfo& info) const {
  return readCapability(SettingsFile(kProfilePath), info);
}

int ProfileData::getFirmwareVersion(std::string& version) const {
  return readFirmwareVersion(SettingsFile(kProfilePath), version);
}

void ProfileData::getProfile(OnuProfile& profile) const {
  const SettingsFile file(kProfilePath);
  readVendorInfo(file, profile.vendor);
  readChipInfo(file, profile.chip);
  readFirmwareVersion(file, profile.firmwareVersion);
  readCapability(file, profile.capability);
}

int ProfileData::getMulticastSwitch(std::string& mode) const {
  const SettingsFile file(eoamPath_);
  return copyText(file.find({"ONU_MULTICAST", "oam_multicast_switch"}), mode);
}

int ProfileData::setMulticastSwitch(const std::string& mode) const {
  return storeText(eoamPath_, {"ONU_MULTICAST", "oam_multicast_switch"}, mode);
}

int ProfileData::getMulticastGroupNum(std::string& number) const {
  const SettingsFile file(eoamPath_);
  return copyAttribute(file.find({"ONU_MULTICAST", "port"}), "groupnum", number);
}

void ProfileData::getPortFeatures(const std::string& port, PortFeatures& features) const {
  const SettingsFile file(eoamPath_);
  copyText(file.find({"ONU_MULTICAST", "oam_multicast_switch"}), features.multicastSwitch);
  copyAttribute(file.find({"ONU_MULTICAST", "port"}), "groupnum", features.multicastGroupNum);
  copyAttribute(findLoopPort(file, port), "loopdetect", features.loopDetect);
}

int ProfileData::getLoopDetect(const std::string& port, std::string& mode) const {
  const SettingsFile file(eoamPath_);
  const xml::XmlNode* const element = findLoopPort(file, port);
  copyAttribute(element, "loopdetect", mode);
  return element == nullptr ? -1 : 0;
}

int ProfileData::setLoopDetect(const std::string& port, const std::string& mode) const {
  const EditedSettings file(eoamPath_);
  return file.finish(
      editAttribute(findLoopPort(file, port), "loopdetect", mode, Write::kIfChanged));
}

}  // namespace onu
