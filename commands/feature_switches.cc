#include "commands/feature_switches.h"

#include "commands/get_or_set.h"
#include "config/omci_data.h"
#include "config/profile_data.h"

namespace onu {
namespace {

void sendLoopDetection(WebRequest& request) {
  std::string stored;
  ProfileData::getInstance().getLoopDetect("0", stored);
  // The pages read this very text, an object without quotes around its key.
  request.reply.sendJsonResponse(stored == "1" ? "[{loop_detect:\"0\"}]" : "[{loop_detect:\"1\"}]");
}

void storeLoopDetection(WebRequest& request) {
  // The file counts from 1: it holds 1 for the pages' 0 and 2 for anything else.
  const char* const stored = getParam(request.query, "loop_detect") == "0" ? "1" : "2";
  if (ProfileData::getInstance().setLoopDetect(getParam(request.query, "port"), stored) != 0) {
    return request.reply.sendErrorPage(kRefused, "set port loopdetect fail");
  }
  request.reply.sendJsonResponse("0");
}

void sendMulticastMode(WebRequest& request) {
  JsonFields fields;
  ProfileData::getInstance().getMulticastSwitch(fields["mc_mode"]);
  request.reply.sendJsonResponse(toJsonObject(fields));
}

void storeMulticastMode(WebRequest& request) {
  if (ProfileData::getInstance().setMulticastSwitch(getParam(request.query, "mc_mode")) != 0) {
    // The words of the command that sets the MTU; the pages know no others.
    return request.reply.sendErrorPage(kRefused, "set mtu fail");
  }
  request.reply.sendJsonResponse("0");
}

void sendPortIsolation(WebRequest& request) {
  std::string stored;
  OmciData::getInstance().getPortIsolation(stored);
  JsonFields fields;
  fields["iso"] = stored == "true" ? "1" : "0";
  request.reply.sendJsonResponse(toJsonObject(fields));
}

void storePortIsolation(WebRequest& request) {
  const bool on = getParam(request.query, "iso") == "1";
  const int result = OmciData::getInstance().setPortIsolation(on ? "true" : "false");
  request.reply.sendJsonResponse(result == 0 ? "0" : "1");
}

}  // namespace

void switchLoopDetection(WebRequest& request) {
  getOrSet(request, sendLoopDetection, storeLoopDetection);
}

void switchMulticastMode(WebRequest& request) {
  getOrSet(request, sendMulticastMode, storeMulticastMode);
}

void switchPortIsolation(WebRequest& request) {
  getOrSet(request, sendPortIsolation, storePortIsolation);
}

}  // namespace onu
