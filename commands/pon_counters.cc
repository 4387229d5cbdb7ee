#include "commands/pon_counters.h"

#include <utility>

#include "device/epon_info.h"

namespace onu {
namespace {

struct CounterField {
  std::string_view key;
  std::string EponAllCnt::*counter;
};

constexpr CounterField kFields[] = {
    {"rxCtrlFrames", &EponAllCnt::rxCtrlFrames},
    {"rxDataFrames", &EponAllCnt::rxDataFrames},
    {"rxFcsFrames", &EponAllCnt::rxFcsFrames},
    {"rxGateFrames", &EponAllCnt::rxGateFrames},
    {"rxLongFrames", &EponAllCnt::rxLongFrames},
    {"rxReportFrames", &EponAllCnt::rxReportFrames},
    {"rxShortFrames", &EponAllCnt::rxShortFrames},
    {"swRegAckFrames", &EponAllCnt::swRegAckFrames},
    {"swRegDeRegFrames", &EponAllCnt::swRegDeRegFrames},
    {"swRegNackFrames", &EponAllCnt::swRegNackFrames},
    {"swRegReRegFrams", &EponAllCnt::swRegReRegFrams},
    {"swRxErrorFrames", &EponAllCnt::swRxErrorFrames},
    {"swRxTotalFrames", &EponAllCnt::swRxTotalFrames},
    {"swTxErorFrames", &EponAllCnt::swTxErorFrames},
    {"swTxTotalFrames", &EponAllCnt::swTxTotalFrames},
    {"txByteAllow", &EponAllCnt::txByteAllow},
    {"txDataFrames", &EponAllCnt::txDataFrames},
    {"txRegisterAckFrames", &EponAllCnt::txRegisterAckFrames},
    {"txRegisterRequestFrames", &EponAllCnt::txRegisterRequestFrames},
    {"txReportFrames", &EponAllCnt::txReportFrames},
};

}  // namespace

void getPonCounters(WebRequest& request) {
  EponAllCnt counters;
  EponInfo::getInstance().getAllCntInfo(counters);

  JsonFields fields;
  for (const auto& [key, counter] : kFields) {
    fields[key] = std::move(counters.*counter);
  }
  request.reply.sendJsonResponse(toJsonObject(fields));
}

}  // namespace onu
