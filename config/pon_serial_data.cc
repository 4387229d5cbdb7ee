#include "config/pon_serial_data.h"

#include "config/settings_file.h"

namespace onu {
namespace {

constexpr const char* kGroup = "PON";
constexpr const char* kNumber = "PON_serial_num";
constexpr const char* kPassword = "PON_passwd";
constexpr const char* kSource = "PON_serial_src";

constexpr Field<PonSerial> kTexts[] = {
    {kNumber, &PonSerial::number},
    {kPassword, &PonSerial::password},
    {kSource, &PonSerial::source},
};

}  // namespace

int PonSerialData::getPonSerial(PonSerial& serial) const {
  return copyTexts(SettingsFile(path_).find({kGroup}), kTexts, serial);
}

int PonSerialData::getPonSerialNum(std::string& value) const {
  return loadText(path_, kGroup, kNumber, value);
}

int PonSerialData::getPonPassword(std::string& value) const {
  return loadText(path_, kGroup, kPassword, value);
}

int PonSerialData::getPonSerialSrc(std::string& value) const {
  return loadText(path_, kGroup, kSource, value);
}

int PonSerialData::setPonSerialNum(const std::string& value) const {
  return storeText(path_, kGroup, kNumber, value);
}

int PonSerialData::setPonPassword(const std::string& value) const {
  return storeText(path_, kGroup, kPassword, value);
}

int PonSerialData::setPonSerialSrc(const std::string& value) const {
  return storeText(path_, kGroup, kSource, value);
}

}  // namespace onu
