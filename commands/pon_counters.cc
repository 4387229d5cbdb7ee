#include "commands/pon_counters.h"

#include <utility>

#include "device/epon_info.h"

namespace onu {

void getPonCounters(WebRequest& request) {
  EponAllCnt counters;
  EponInfo::getInstance().getAllCntInfo(counters);

  JsonFields fields;
  fields["rxFcsFrames"] = std::move(counters.rxFcsFrames);
  fields["rxShortFrames"] = std::move(counters.rxShortFrames);
  fields["rxLongFrames"] = std::move(counters.rxLongFrames);
  fields["rxDataFrames"] = std::move(counters.rxDataFrames);
  fields["rxCtrlFrames"] = std::move(counters.rxCtrlFrames);
  fields["rxReportFrames"] = std::move(counters.rxReportFrames);
  fields["rxGateFrames"] = std::move(counters.rxGateFrames);
  fields["txRegisterRequestFrames"] = std::move(counters.txRegisterRequestFrames);
  fields["txRegisterAckFrames"] = std::move(counters.txRegisterAckFrames);
  fields["txReportFrames"] = std::move(counters.txReportFrames);
  fields["txDataFrames"] = std::move(counters.txDataFrames);
  fields["txByteAllow"] = std::move(counters.txByteAllow);
  fields["swTxTotalFrames"] = std::move(counters.swTxTotalFrames);
  fields["swTxErorFrames"] = std::move(counters.swTxErorFrames);
  fields["swRxTotalFrames"] = std::move(counters.swRxTotalFrames);
  fields["swRxErrorFrames"] = std::move(counters.swRxErrorFrames);
  fields["swRegAckFrames"] = std::move(counters.swRegAckFrames);
  fields["swRegNackFrames"] = std::move(counters.swRegNackFrames);
  fields["swRegDeRegFrames"] = std::move(counters.swRegDeRegFrames);
  fields["swRegReRegFrams"] = std::move(counters.swRegReRegFrams);
  request.reply.sendJsonResponse(toJsonObject(fields));
}

}  // namespace onu
