#include "commands/network.h"

#include <vector>

#include "base/text.h"
#include "config/config_data.h"
#include "config/tpm_data.h"
#include "device/cli_runner.h"

namespace onu {
namespace {

constexpr const char* kAgingPort = "0";

std::string portObject(const PhyPortInfo& port) {
  return toJsonObject({{"auto", port.auto_neg},
                       {"flow_control", port.flow_control},
                       {"link", "net_up"},  // whatever the link does
                       {"mode_max", port.mode_max},
                       {"phy", port.phy_admin},
                       {"port_id", port.port},
                       {"work_mode", port.mode}});
}

void applyPort(const PhyPortInfo& port) {
  // Negotiation is always on, on the WAN port whatever port was stored, and "flase" is the word
  // that goes to clish.
  CliRunner::run("tpm", concat({"config\nport autoneg 0 WAN true ", port.mode, "\nport fc 0 WAN ",
                                port.flow_control == "0" ? "flase" : "true", "\n"}));
}

}  // namespace

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

void sendPorts(WebRequest& request) {
  std::vector<PhyPortInfo> ports;
  ConfigData::getInstance().getPhyPorts(ports);
  std::string body = "[ ";
  for (const PhyPortInfo& port : ports) {
    body.append(portObject(port)).append(",");
  }
  body.back() = ']';  // in place of the last comma, or of the blank when there is no port
  request.reply.sendJsonResponse(body);
}

void storePort(WebRequest& request) {
  PhyPortInfo port;
  port.port = getParam(request.query, "port");
  port.flow_control = getParam(request.query, "flow_control");
  port.auto_neg = getParam(request.query, "auto");
  port.mode = getParam(request.query, "mode");
  if (ConfigData::getInstance().setPhyPort(port) == -1) {
    return request.reply.sendJsonResponse("1  ");
  }
  TpmData::getInstance().setFlowControl(port.flow_control);
  applyPort(port);
  request.reply.sendJsonResponse("0");
}

void sendMacAging(WebRequest& request) {
  std::string time;
  if (ConfigData::getInstance().getMacAgingTime(kAgingPort, time) != 0) {
    return request.reply.sendJsonResponse("1");
  }
  request.reply.sendObject({{"aging_time", time}});  // the parameter that stores it is age_time
}

void storeMacAging(WebRequest& request) {
  const std::string time = getParam(request.query, "age_time");
  if (ConfigData::getInstance().setMacAgingTime(kAgingPort, time) != 0) {
    return request.reply.sendJsonResponse(" 1");
  }
  CliRunner::run("eoam", concat({"port mac_aging_time 0 UNI_0 ", time}));
  request.reply.sendJsonResponse(" 0");
}

}  // namespace onu
