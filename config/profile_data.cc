#include "config/profile_data.h"

#include <string_view>

#include "config/profile_values.h"
#include "config/settings_file.h"

namespace onu {
namespace {

constexpr const char* kMulticast = "ONU_MULTICAST";
constexpr const char* kMulticastSwitch = "oam_multicast_switch";

std::string asIs(std::string_view value) { return std::string(value); }

// A label of the profile, the field it fills and how its value is taken.
struct Entry {
  Field<OnuProfile> field;
  std::string (*take)(std::string_view value) = asIs;
};

constexpr Entry kVendorEntries[] = {
    {{"ONU vendor name", &VendorInfo::vendor}},
    {{"Model for eOAM", &VendorInfo::model}},
    {{"HW version", &VendorInfo::hwVersion}},
    {{"SW version", &VendorInfo::swVersion}},
    {{"Chip vendor ID", &ChipInfo::chipId}, withoutPrefix},
    {{"Chip revision", &ChipInfo::revision}, withoutPrefix},
    {{"Chip version", &ChipInfo::icDate}, chipDate},
    {{"Chip model", &ChipInfo::model}, withoutPrefix},
    {{"Firmware version", &OnuProfile::firmwareVersion}, dottedVersion},
};

constexpr Entry kCapabilityEntries[] = {
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

template <std::size_t count>
void readChain(const xml::XmlNode* attrib, const Entry (&entries)[count], OnuProfile& profile) {
  for (; attrib != nullptr; attrib = attrib->next) {
    const char* const name = xml::attr(attrib, "name");
    const char* const value = xml::attr(attrib, "value");
    if (name == nullptr || value == nullptr) {
      return;
    }
    const std::string_view label = name;
    for (const auto& [field, take] : entries) {
      if (field.name == label) {
        profile.*field.member = take(value);
      }
    }
  }
}

// These two return 0, or -1 without the group.

int readVendor(const SettingsFile& file, OnuProfile& profile) {
  if (const xml::XmlNode* const first = file.find({"Vendor", "attrib"})) {
    profile.firmwareVersion.clear();
    readChain(first, kVendorEntries, profile);
  }
  return file.find({"Vendor"}) == nullptr ? -1 : 0;
}

int readCapability(const SettingsFile& file, OnuProfile& profile) {
  if (const xml::XmlNode* const first = file.find({"Capability", "attrib"})) {
    readChain(first, kCapabilityEntries, profile);
    profile.onuType = onuTypeName(profile.onuType);
  }
  return file.find({"Capability"}) == nullptr ? -1 : 0;
}

// A getter of one part, whose missing values keep what `part` holds.
template <typename Part>
int readPart(int (*read)(const SettingsFile&, OnuProfile&), Part& part) {
  OnuProfile profile;
  static_cast<Part&>(profile) = part;
  const int result = read(SettingsFile(kProfilePath), profile);
  part = profile;
  return result;
}

xml::XmlNode* findLoopPort(const SettingsFile& file, const std::string& port) {
  return findNumbered(file.find({"ONU_LOOPDETECT", "port"}), port);
}

}  // namespace

int ProfileData::getVendorInfo(VendorInfo& info) const { return readPart(readVendor, info); }

int ProfileData::getChipInfo(ChipInfo& info) const { return readPart(readVendor, info); }

int ProfileData::getCapability(CapabilityInfo& info) const {
  return readPart(readCapability, info);
}

int ProfileData::getFirmwareVersion(std::string& version) const {
  OnuProfile profile;
  profile.firmwareVersion = version;
  const int result = readVendor(SettingsFile(kProfilePath), profile);
  version = profile.firmwareVersion;
  return result;
}

void ProfileData::getProfile(OnuProfile& profile) const {
  const SettingsFile file(kProfilePath);
  readVendor(file, profile);
  readCapability(file, profile);
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
  SettingsFile file(path_, Write::kIfChanged);
  file.setAttribute(findLoopPort(file, port), "loopdetect", mode);
  return file.save();
}

}  // namespace onu
