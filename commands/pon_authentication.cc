#include "commands/pon_authentication.h"

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
std::string serialNumber(const PonSerialData& pon, const std::string& mac) {
  constexpr std::size_t kVendorSize = 4;
  std::string number;
  std::string source;
  pon.getPonSerialNum(number);
  pon.getPonSerialSrc(source);
  return source == "1" ? number.substr(0, kVendorSize) + lastFourOctets(mac) : number;
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
  std::string command = "onu loid " + loid.loid + "  " + loid.password;
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
  const ConfigData& config = ConfigData::getInstance();
  FecInfo fec;
  config.getFec(fec);
  LoidInfo loid;
  config.getLoid(loid);
  IpInfo ip;
  config.getIpInfo(ip);
  OmciLoid omci;
  OmciData::getInstance().getOmciLoid(omci);

  const PonSerialData& pon = PonSerialData::getInstance();
  std::string ponPassword;
  pon.getPonPassword(ponPassword);

  request.reply.sendObject({{"ctc_switch", "1"},
                            {"cur_mac", ip.onu_mac},
                            {"fec_mode", fec.fec_mode},
                            {"gpon_loid", omci.loid},
                            {"gpon_password", omci.password},
                            {"loid", loid.loid},
                            {"password", loid.password},
                            {"ponPassword", ponPassword},
                            {"ponSerialNum", serialNumber(pon, ip.onu_mac)},
                            {"sn", withoutSeparators(ip.onu_mac)}});
}

void storeAuthentication(WebRequest& request) { request.reply.sendStatus(store(request.query)); }

}  // namespace onu
