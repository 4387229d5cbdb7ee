#pragma once

#include <string>

#include "config/paths.h"

namespace onu {

struct PonSerial {
  std::string number;
  std::string password;
  std::string source;  // "1": the serial number ends in part of the MAC address; else as stored
};

// The GPON serial settings file: with what the unit registers at the line terminal. Every call
// reads it anew and a setter writes it back as a whole, only when its value has changed; writing is
// not checked.
class PonSerialData : public Accessor<PonSerialData, kGponSettingsPath> {
 public:
  // 0, or -1 when the file cannot be opened or has no PON group. 0 with `value` untouched when the
  // group lacks the element.
  int getPonSerialNum(std::string& value) const;
  int getPonPassword(std::string& value) const;
  int getPonSerialSrc(std::string& value) const;
  // All three, from one reading of the file.
  int getPonSerial(PonSerial& serial) const;

  // 0, or -1 when the file cannot be opened or the element is missing.
  int setPonSerialNum(const std::string& value) const;
  int setPonPassword(const std::string& value) const;
  int setPonSerialSrc(const std::string& value) const;
};

}  // namespace onu
