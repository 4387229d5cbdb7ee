#include "commands/pon_counters.h"

#include <utility>

#include "device/epon_info.h"

namespace onu {

void sendPonCounters(WebRequest& request) {
  EponAllCnt counters;
  EponInfo::getInstance().getAllCntInfo(counters);
  JsonFields fields;
  for (const auto& [name, counter] : kEponCounters) {
    fields[name] = std::move(counters.*counter);
  }
  request.reply.sendObject(fields);
}

}  // namespace onu
