#include "config/pon_serial_data.h"

#include "config/settings_file.h"

namespace onu {
namespace {

constexpr const char* kSerialNum = "PON_serial_num";
constexpr const char* kPassword = "PON_passwd";
constexpr const char* kSerialSrc = "PON_serial_src";

constexpr Field<PonSerial> kTexts[] = {
    {kSerialNum, &PonSerial::number},
    {kPassword, &PonSerial::password},
    {kSerialSrc, &PonSerial::source},
};

}  // namespace

PonSerialData& PonSerialData::getInstance() {
  static PonSerialData instance;
  return instance;
}

int PonSerialData::getPonSerial(PonSerial& serial) const {
  const SettingsFile file(path_);
  return copyTexts(file.find({"PON"}), kTexts, serial);
}

int PonSerialData::getPonSerialNum(std::string& value) const { return get(kSerialNum, value); }
int PonSerialData::getPonPassword(std::string& value) const { return get(kPassword, value); }
int PonSerialData::getPonSerialSrc(std::string& value) const { return get(kSerialSrc, value); }

int PonSerialData::setPonSerialNum(const std::string& value) const {
  return set(kSerialNum, value);
}
int PonSerialData::setPonPassword(const std::string& value) const { return set(kPassword, value); }
int PonSerialData::setPonSerialSrc(const std::string& value) const {
  return set(kSerialSrc, value);
}

int PonSerialData::get(const char* name, std::string& value) const {
  const SettingsFile file(path_);
  const xml::XmlNode* const group = file.find({"PON"});
  copyText(xml::child(group, name), value);
  return group == nullptr ? -1 : 0;
}

int PonSerialData::set(const char* name, const std::string& value) const {
  return storeText(path_, {"PON", name}, value);
}

}  // namespace onu
