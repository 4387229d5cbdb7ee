#include "commands/feature_switches.h"

#include "config/omci_data.h"
#include "config/profile_data.h"

namespace onu {

void sendLoopDetection(WebRequest& request) {
  std::string stored;
  ProfileData::getInstance().getLoopDetect("0", stored);
  // The pages read this very text, an object without quotes around its key.
  request.reply.sendJsonResponse(stored == "1" ? "[{loop_detect:\"0\"}]" : "[{loop_detect:\"1\"}]");
}

void storeLoopDetection(WebRequest& request) {
  // The file counts from 1: it holds 1 for the pages' 0 and 2 for anything else.
  const char* const stored = getParam(request.query, "loop_detect") == "0" ? "1" : "2";
  const int result =
      ProfileData::getInstance().setLoopDetect(getParam(request.query, "port"), stored);
  request.reply.sendStatusOrPage(result, "set port loopdetect fail");
}

void sendMulticastMode(WebRequest& request) {
  std::string mode;
  ProfileData::getInstance().getMulticastSwitch(mode);
  request.reply.sendObject({{"mc_mode", mode}});
}

void storeMulticastMode(WebRequest& request) {
  const int result =
      ProfileData::getInstance().setMulticastSwitch(getParam(request.query, "mc_mode"));
  // The words of the command that sets the MTU; the pages know no others.
  request.reply.sendStatusOrPage(result, "set mtu fail");
}

void sendPortIsolation(WebRequest& request) {
  std::string stored;
  OmciData::getInstance().getPortIsolation(stored);
  request.reply.sendObject({{"iso", stored == "true" ? "1" : "0"}});
}

void storePortIsolation(WebRequest& request) {
  const bool on = getParam(request.query, "iso") == "1";
  request.reply.sendStatus(OmciData::getInstance().setPortIsolation(on ? "true" : "false"));
}

}  // namespace onu
