#include "commands/vlan.h"

#include <vector>

#include "base/number.h"
#include "base/text.h"
#include "config/config_data.h"
#include "device/cli_runner.h"

namespace onu {
namespace {

// The clish command of the mode, empty for a mode that there is not. The runs of blanks differ, and
// the command shell gets them as it always did.
std::string vlanCommand(const VlanPortInfo& port) {
  switch (toNumber(port.mode)) {
    case 1:
      return concat({"port vlan transparent ", port.port});
    case 2:
      return concat({"port vlan tag ", port.port, "  ", port.default_vid});
    case 3:
      return concat({"port vlan translation  ", port.port, "  ", port.default_vid, " ",
                     port.vid_sum, "  ", port.vid_serial});
    case 4:
      return concat({"port vlan trunk  ", port.port, "  ", port.default_vid, "   ", port.vid_sum,
                     "  ", port.vid_serial});
    default:
      return {};
  }
}

}  // namespace

void sendVlan(WebRequest& request) {
  std::vector<VlanPortInfo> ports;
  if (ConfigData::getInstance().getVlanPorts(ports) == -1) {
    return request.reply.sendJsonResponse("[]");
  }
  const VlanPortInfo& port = ports.front();
  request.reply.sendArray({{"def_vid", port.default_vid},
                           {"mode", port.mode},
                           {"portId", port.port},
                           // the parameter that sets it is vid_serial
                           {"vidSerial", port.vid_serial}});
}

void storeVlan(WebRequest& request) {
  VlanPortInfo port;
  port.port = getParam(request.query, "portId");
  port.mode = getParam(request.query, "mode");
  port.default_vid = getParam(request.query, "def_vid");
  port.vid_sum = getParam(request.query, "vid_sum");
  port.vid_serial = getParam(request.query, "vid_serial");

  // The switch comes first, so it keeps a mode that cannot be stored; an empty command runs too.
  const std::string command = vlanCommand(port);
  CliRunner::run("eoam", command);
  const bool stored = !command.empty() && ConfigData::getInstance().setVlanPort(port) == 0;
  request.reply.sendStatus(stored ? 0 : -1);
}

void refuseAction(WebRequest& request) { request.reply.sendStatus(-1); }

}  // namespace onu
