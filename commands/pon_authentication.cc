#include "commands/pon_authentication.h"

#include "base/text.h"
#include "commands/mac_text.h"
#include "config/config_data.h"
#include "config/omci_data.h"
#include "config/pon_serial_data.h"
#include "device/cli_runner.h"

namespace onu {
namespace {

constexpr const char* kCliMode = "eoam";

// The serial number as the unit registers with it: as stored, or its first four letters, which name
// the vendor, and part of the MAC address.
std::string serialNumber(const PonSerial& serial, const std::string& mac) {
  constexpr std::size_t kVendorSize = 4;
  return serial.source == "1" ? serial.number.substr(0, kVendorSize) + lastFourOctets(mac)
                              : serial.number;
}

// -1 at the first failure that counts.
int store(const ParsedQuery& query) {
  const ConfigData& config = ConfigData::getInstance();
  const PonSerialData& pon = PonSerialData::getInstance();
  pon.setPonSerialNum(getParam(query, "ponSerialNum"));
  pon.setPonPassword(getParam(query, "ponPassword"));
  OmciData::getInstance().setOmciLoid(
      {getParam(query, "gpon_loid"), getParam(query, "gpon_password")});

  const LoidInfo loid = {getParam(query, "loid"), getParam(query, "password")};
  if (config.setSn(getParam(query, "sn")) != 0 || config.setLoid(loid) != 0) {
    return -1;
  }
  std::string command = concat({"onu loid ", loid.loid, "  ", loid.password});
  CliRunner::run(kCliMode, command);

  const std::string fecMode = getParam(query, "fec_mode");
  if (config.setFecMode(fecMode) != 0) {
    return -1;
  }
  // A mode that is neither gives the command shell the line before once more.
  if (fecMode == "0") {
    command = "pon fec_mode disable";
  } else if (fecMode == "1") {
    command = "pon fec_mode enable";
  }
  CliRunner::run(kCliMode, command);
  return 0;
}

}  // namespace

void sendAuthentication(WebRequest& request) {
  UnitIdentity identity;
  ConfigData::getInstance().getIdentity(identity);
  const std::string& mac = identity.ip.onu_mac;
  const LoidInfo& loid = identity.loid;
  OmciLoid omci;
  OmciData::getInstance().getOmciLoid(omci);
  PonSerial serial;
  PonSerialData::getInstance().getPonSerial(serial);

  request.reply.sendObject({{"ctc_switch", "1"},
                            {"cur_mac", mac},
                            {"fec_mode", identity.fec.fec_mode},
                            {"gpon_loid", omci.loid},
                            {"gpon_password", omci.password},
                            {"loid", loid.loid},
                            {"password", loid.password},
                            {"ponPassword", serial.password},
                            {"ponSerialNum", serialNumber(serial, mac)},
                            {"sn", withoutSeparators(mac)}});
}

void storeAuthentication(WebRequest& request) { request.reply.sendStatus(store(request.query)); }

}  // namespace onu
