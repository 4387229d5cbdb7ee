#include "commands/traffic_shaping.h"

#include <array>
#include <utility>

#include "config/config_data.h"
#include "config/tpm_data.h"
#include "device/shell.h"

namespace onu {
namespace {

using QueueKeys = std::array<const char*, std::tuple_size_v<QueueTexts>>;

constexpr QueueKeys kWeightKeys = {"queue0", "queue1", "queue2", "queue3",
                                   "queue4", "queue5", "queue6", "queue7"};
constexpr QueueKeys kSizeKeys = {"size0", "size1", "size2", "size3",
                                 "size4", "size5", "size6", "size7"};

// A value that each queue of a list has: the keys of its reply by queue number, the parameters that
// name a queue and its new value, and where it is kept.
struct QueueValue {
  const QueueKeys& keys;
  const char* queueParameter;
  const char* valueParameter;
  int (TpmData::*get)(QueueTexts&) const;
  int (TpmData::*set)(const std::string&, const std::string&) const;
};
constexpr QueueValue kWeights = {kWeightKeys, "que_id", "usr_pri", &TpmData::getQueueWeights,
                                 &TpmData::setQueueWeight};
constexpr QueueValue kTransmitSizes = {kSizeKeys, "voq_id", "voq_thresh", &TpmData::getTxQueueSizes,
                                       &TpmData::setTxQueueSize};
constexpr QueueValue kReceiveSizes = {kSizeKeys, "voq_id", "voq_thresh", &TpmData::getRxQueueSizes,
                                      &TpmData::setRxQueueSize};

void sendQueues(WebRequest& request, const QueueValue& value) {
  QueueTexts texts;
  if ((TpmData::getInstance().*value.get)(texts) != 0) {
    return request.reply.sendJsonResponse("error");
  }
  JsonFields fields;
  for (std::size_t queue = 0; queue < texts.size(); ++queue) {
    fields[value.keys[queue]] = std::move(texts[queue]);
  }
  request.reply.sendObject(fields);
}

void storeQueue(WebRequest& request, const QueueValue& value) {
  request.reply.sendStatus(
      (TpmData::getInstance().*value.set)(getParam(request.query, value.queueParameter),
                                          getParam(request.query, value.valueParameter)));
}

const QueueValue& chosenSizes(const WebRequest& request) {
  return getParam(request.query, "voq_dir") == "0" ? kReceiveSizes : kTransmitSizes;
}

// What a rate holds for: the end of the traffic manager's file that takes it.
constexpr const char* kQueue = "queue_set";
constexpr const char* kInterface = "if_set";

// `target` stands in front of the rate.
void limitRate(const char* file, const char* target, std::string_view rate) {
  for (const char* const direction : {"us", "ds"}) {
    runShell({"echo 0 ", direction, " UNI_ANY ", target, rate,
              " 1536 > /sys/devices/platform/tpm/cfg_traffic/rate_limit_", file});
  }
}

void applyStormLimit(const std::string& mode, const std::string& rate) {
  if (mode == "0") {
    limitRate(kQueue, "1 ", rate);
  } else if (mode == "1") {
    limitRate(kQueue, "7 ", rate);
  } else if (mode == "2") {
    limitRate(kInterface, " ", rate);  // two blanks
  } else if (mode == "3") {
    // The highest rate that the traffic manager takes, which limits nothing.
    constexpr std::string_view kNoLimit = "1048568";
    limitRate(kQueue, "1 ", kNoLimit);
    limitRate(kQueue, "7 ", kNoLimit);
    limitRate(kInterface, "", kNoLimit);
  }
}

}  // namespace

void sendScheduling(WebRequest& request) {
  std::string method;
  if (TpmData::getInstance().getSchedMethod(method) != 0) {
    return request.reply.sendJsonResponse("error");
  }
  request.reply.sendObject({{"algo_mode", method}});
}

void storeScheduling(WebRequest& request) {
  TpmData::getInstance().setSchedMethod(getParam(request.query, "algo_mode"));
  request.reply.sendJsonResponse("0");  // whatever became of it
}

void sendQueueWeights(WebRequest& request) { sendQueues(request, kWeights); }
void storeQueueWeight(WebRequest& request) { storeQueue(request, kWeights); }

void sendQueueSizes(WebRequest& request) { sendQueues(request, chosenSizes(request)); }
void storeQueueSize(WebRequest& request) { storeQueue(request, chosenSizes(request)); }

void sendStormLimit(WebRequest& request) {
  std::string mode;
  std::string rate;
  if (ConfigData::getInstance().getStorm(mode, rate) == -1) {
    return request.reply.sendJsonResponse("[]");
  }
  request.reply.sendArray({{"bc_mode", mode}, {"rate", rate}});
}

void storeStormLimit(WebRequest& request) {
  const std::string mode = getParam(request.query, "bs");
  const std::string rate = getParam(request.query, "bs_thresh");
  applyStormLimit(mode, rate);  // comes first, and holds whether or not it can be stored
  request.reply.sendStatus(ConfigData::getInstance().setStorm(mode, rate));
}

}  // namespace onu
