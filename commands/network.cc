#include "commands/network.h"

#include "commands/get_or_set.h"
#include "config/config_data.h"
#include "config/tpm_data.h"

namespace onu {
namespace {

void sendIpAddress(WebRequest& request) {
  IpInfo ip;
  ConfigData::getInstance().getIpInfo(ip);

  JsonFields fields;
  fields["cur_ip"] = ip.ipAddress;
  fields["cur_netmask"] = ip.netMask;
  fields["ip"] = ip.ipAddress;
  fields["netmask"] = ip.netMask;
  request.reply.sendJsonResponse(toJsonObject(fields));
}

void storeIpAddress(WebRequest& request) {
  IpInfo ip;
  ip.ipAddress = getParam(request.query, "ip");
  ip.netMask = getParam(request.query, "netmask");
  if (ConfigData::getInstance().setIpInfo(ip) != 0) {
    return request.reply.sendErrorPage(kRefused, "set ip fail");
  }
  request.reply.sendJsonResponse("0");
}

void sendMtu(WebRequest& request) {
  MtuInfo mtu;
  TpmData::getInstance().getMtu(mtu);

  JsonFields fields;
  fields["ipv4DsMtu"] = mtu.ipv4DsMtu;
  fields["ipv4UsMtu"] = mtu.ipv4UsMtu;
  fields["ipv4pppoeUsMtu"] = mtu.ipv4pppoeUsMtu;
  request.reply.sendJsonResponse(toJsonObject(fields));
}

void storeMtu(WebRequest& request) {
  MtuInfo mtu;
  mtu.mtuSettingEnable = "1";
  mtu.ipv4DsMtu = getParam(request.query, "ipv4DsMtu");
  mtu.ipv4UsMtu = getParam(request.query, "ipv4UsMtu");
  mtu.ipv4pppoeUsMtu = getParam(request.query, "ipv4pppoeUsMtu");
  if (TpmData::getInstance().setMtu(mtu) != 0) {
    return request.reply.sendErrorPage(kRefused, "set mtu fail");
  }
  request.reply.sendJsonResponse("0");
}

}  // namespace

void configureIpAddress(WebRequest& request) { getOrSet(request, sendIpAddress, storeIpAddress); }

void configureMtu(WebRequest& request) { getOrSet(request, sendMtu, storeMtu); }

}  // namespace onu
