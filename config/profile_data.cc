#include "config/profile_data.h"

#include <string_view>

#include "config/profile_values.h"
#include "config/settings_file.h"

namespace onu {
namespace {

constexpr const char* kVendor = "Vendor";
constexpr const char* kMulticast = "ONU_MULTICAST";
constexpr const char* kMulticastSwitch = "oam_multicast_switch";

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

// Fills `record` from the chain of one of the profile's groups. -1 without the group, else 0.
template <typename Record, std::size_t count>
int readChain(const SettingsFile& file, const char* group, const Entry<Record> (&entries)[count],
              Record& record) {
  const xml::XmlNode* attrib = file.find({group, "attrib"});
  for (; attrib != nullptr; attrib = attrib->next) {
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
  return file.find({group}) == nullptr ? -1 : 0;
}

int readCapability(const SettingsFile& file, CapabilityInfo& info) {
  const int result = readChain(file, "Capability", kCapabilityEntries, info);
  if (file.find({"Capability", "attrib"}) != nullptr) {
    info.onuType = onuTypeName(info.onuType);
  }
  return result;
}

int readFirmwareVersion(const SettingsFile& file, std::string& version) {
  Firmware firmware;
  const int result = readChain(file, kVendor, kFirmwareEntries, firmware);
  if (file.find({kVendor, "attrib"}) != nullptr) {
    version = firmware.version;
  }
  return result;
}

xml::XmlNode* findLoopPort(const SettingsFile& file, const std::string& port) {
  return findNumbered(file.find({"ONU_LOOPDETECT", "port"}), port);
}

}  // namespace

int ProfileData::getVendorInfo(VendorInfo& info) const {
  return readChain(SettingsFile(kProfilePath), kVendor, kVendorEntries, info);
}

int ProfileData::getChipInfo(ChipInfo& info) const {
  return readChain(SettingsFile(kProfilePath), kVendor, kChipEntries, info);
}

int ProfileData::getCapability(CapabilityInfo& info) const {
  return readCapability(SettingsFile(kProfilePath), info);
}

int ProfileData::getFirmwareVersion(std::string& version) const {
  return readFirmwareVersion(SettingsFile(kProfilePath), version);
}

void ProfileData::getProfile(OnuProfile& profile) const {
  const SettingsFile file(kProfilePath);
  readChain(file, kVendor, kVendorEntries, profile.vendor);
  readChain(file, kVendor, kChipEntries, profile.chip);
  readFirmwareVersion(file, profile.firmwareVersion);
  readCapability(file, profile.capability);
}

int ProfileData::getMulticastSwitch(std::string& mode) const {
  return copyText(SettingsFile(path_).find({kMulticast, kMulticastSwitch}), mode);
}

int ProfileData::setMulticastSwitch(const std::string& mode) const {
  return storeText(path_, kMulticast, kMulticastSwitch, mode);
}

int ProfileData::getMulticastGroupNum(std::string& number) const {
  return copyAttribute(SettingsFile(path_).find({kMulticast, "port"}), "groupnum", number);
}

void ProfileData::getPortFeatures(const std::string& port, PortFeatures& features) const {
  const SettingsFile file(path_);
  copyText(file.find({kMulticast, kMulticastSwitch}), features.multicastSwitch);
  copyAttribute(file.find({kMulticast, "port"}), "groupnum", features.multicastGroupNum);
  copyAttribute(findLoopPort(file, port), "loopdetect", features.loopDetect);
}

int ProfileData::getLoopDetect(const std::string& port, std::string& mode) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const element = findLoopPort(file, port);
  copyAttribute(element, "loopdetect", mode);
  return element == nullptr ? -1 : 0;
}

int ProfileData::setLoopDetect(const std::string& port, const std::string& mode) const {
  SettingsFile file(path_);
  file.setAttribute(findLoopPort(file, port), "loopdetect", mode);
  return file.save();
}

}  // namespace onu
