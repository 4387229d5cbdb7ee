#include "commands/network.h"

#include "config/config_data.h"
#include "config/tpm_data.h"

namespace onu {

void sendIpAddress(WebRequest& request) {
  IpInfo ip;
  ConfigData::getInstance().getIpInfo(ip);
  request.reply.sendObject({{"cur_ip", ip.ipAddress},
                            {"cur_netmask", ip.netMask},
                            {"ip", ip.ipAddress},
                            {"netmask", ip.netMask}});
}

void storeIpAddress(WebRequest& request) {
  IpInfo ip;
  ip.ipAddress = getParam(request.query, "ip");
  ip.netMask = getParam(request.query, "netmask");
  request.reply.sendStatusOrPage(ConfigData::getInstance().setIpInfo(ip), "set ip fail");
}

void sendMtu(WebRequest& request) {
  MtuInfo mtu;
  TpmData::getInstance().getMtu(mtu);
  request.reply.sendObject({{"ipv4DsMtu", mtu.ipv4DsMtu},
                            {"ipv4UsMtu", mtu.ipv4UsMtu},
                            {"ipv4pppoeUsMtu", mtu.ipv4pppoeUsMtu}});
}

void storeMtu(WebRequest& request) {
  MtuInfo mtu;
  mtu.mtuSettingEnable = "1";  // storing the limits switches them on
  mtu.ipv4DsMtu = getParam(request.query, "ipv4DsMtu");
  mtu.ipv4UsMtu = getParam(request.query, "ipv4UsMtu");
  mtu.ipv4pppoeUsMtu = getParam(request.query, "ipv4pppoeUsMtu");
  request.reply.sendStatusOrPage(TpmData::getInstance().setMtu(mtu), "set mtu fail");
}

}  // namespace onu
