#pragma once

#include <string>

#include "config/paths.h"

namespace onu {

struct VendorInfo {
  std::string vendor;
  std::string model;
  std::string hwVersion;
  std::string swVersion;
};

struct ChipInfo {
  std::string chipId;  // hexadecimal digits, as revision and model
  std::string revision;
  std::string icDate;  // yyyy/mm/dd
  std::string model;
};

// Ports, queues and battery. The profile has one bitmap of the FE ports and one number of queues in
// either direction, which fill two fields each.
struct CapabilityInfo {
  std::string geNum;
  std::string geBitmap;
  std::string feNum;
  std::string feBitmapLsb;
  std::string feBitmapMsb;
  std::string potsNum;
  std::string usQueNum;
  std::string maxUsQueue;
  std::string dsQueNum;
  std::string maxDsQueue;
  std::string batteryBackup;
  std::string onuType;  // name, or the number of a type without one
};

struct OnuProfile : VendorInfo, ChipInfo, CapabilityInfo {
  std::string firmwareVersion;
};

struct PortFeatures {
  std::string multicastSwitch;
  std::string multicastGroupNum;
  std::string loopDetect;
};

// The ONU profile, which is never written, and the multicast and loop detection groups of the eOAM
// settings file. Values are texts. Every call reads its file anew. All return 0, or -1 when the
// file cannot be opened or the group or element of the value is missing. Setters write, unchecked,
// and only when the value has changed.
class ProfileData : public Accessor<ProfileData, kEoamSettingsPath> {
 public:
  // The profile's groups are chains of name and value pairs. An entry that lacks its name or its
  // value ends the chain; a name that does not occur leaves its field as it is.
  int getVendorInfo(VendorInfo& info) const;
  int getChipInfo(ChipInfo& info) const;
  // Without a type in the profile the one in `info` is taken, an empty one as type 0.
  int getCapability(CapabilityInfo& info) const;
  // Empty when the chain has entries, but no version.
  int getFirmwareVersion(std::string& version) const;
  // What the four fill, from one reading of the file.
  void getProfile(OnuProfile& profile) const;

  int getMulticastSwitch(std::string& mode) const;
  int setMulticastSwitch(const std::string& mode) const;
  // Of the first port. -1 also when it has no group number.
  int getMulticastGroupNum(std::string& number) const;

  // `port` is the decimal number of an Ethernet port, from 0 in the order of the file. A port that
  // has no setting leaves `mode` as it is.
  int getLoopDetect(const std::string& port, std::string& mode) const;
  int setLoopDetect(const std::string& port, const std::string& mode) const;

  // What getMulticastSwitch, getMulticastGroupNum and getLoopDetect fill, from one reading.
  void getPortFeatures(const std::string& port, PortFeatures& features) const;
};

}  // namespace onu
