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
// the vendor, and the last four octets of the MAC address, of which `mac` has the digits.
std::string serialNumber(const PonSerial& serial, const std::string& mac) {
  return serial.source == "1" ? serial.number.substr(0, 4) + mac.substr(4) : serial.number;
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
  const LoidInfo& loid = identity.loid;
  OmciLoid omci;
  OmciData::getInstance().getOmciLoid(omci);
  PonSerial serial;
  PonSerialData::getInstance().getPonSerial(serial);
  const std::string digits = withoutSeparators(identity.ip.onu_mac);

  request.reply.sendObject({{"ctc_switch", "1"},
                            {"cur_mac", identity.ip.onu_mac},
                            {"fec_mode", identity.fec.fec_mode},
                            {"gpon_loid", omci.loid},
                            {"gpon_password", omci.password},
                            {"loid", loid.loid},
                            {"password", loid.password},
                            {"ponPassword", serial.password},
                            {"ponSerialNum", serialNumber(serial, digits)},
                            {"sn", digits}});
}

void storeAuthentication(WebRequest& request) { request.reply.sendStatus(store(request.query)); }

}  // namespace onu
