#include "device/epon_info.h"

#include <array>

#include "device/epon_tokens.h"
#include "device/status_file.h"
#include "frontend/debug_trace.h"

namespace onu {
namespace {

// The counters in the order in which the driver prints them.
constexpr std::array kCounters = {
    &EponAllCnt::rxFcsFrames,         &EponAllCnt::rxShortFrames,
    &EponAllCnt::rxLongFrames,        &EponAllCnt::rxDataFrames,
    &EponAllCnt::rxCtrlFrames,        &EponAllCnt::rxReportFrames,
    &EponAllCnt::rxGateFrames,        &EponAllCnt::txRegisterRequestFrames,
    &EponAllCnt::txRegisterAckFrames, &EponAllCnt::txReportFrames,
    &EponAllCnt::txDataFrames,        &EponAllCnt::txByteAllow,
    &EponAllCnt::swTxTotalFrames,     &EponAllCnt::swTxErorFrames,
    &EponAllCnt::swRxTotalFrames,     &EponAllCnt::swRxErrorFrames,
    &EponAllCnt::swRegAckFrames,      &EponAllCnt::swRegNackFrames,
    &EponAllCnt::swRegDeRegFrames,    &EponAllCnt::swRegReRegFrams,
};

// -1 when the file cannot be opened.
int parseInfo(const char* path, EponOnuInfo& record) {
  std::string text;
  if (readStatusFile(path, text) != 0) {
    debugTrace("open file infoEpon  fail !");
    return -1;
  }
  std::string firstAddress;  // only the second is reported
  const std::array slots = {&record.state,          &record.etherType, &firstAddress,
                            &record.unicastMacAddr, &record.txLLId1,   &record.txLLId2};
  splitTokens(text, TokenIndex::kPerLine, slots.data(), slots.size());
  return 0;
}

int parseCounters(const char* path, EponAllCnt& record) {
  std::string text;
  if (readStatusFile(path, text) != 0) {
    debugTrace("open file allCnt  fail !");
    return -1;
  }
  std::array<std::string*, kCounters.size()> slots;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    slots[i] = &(record.*kCounters[i]);
  }
  splitTokens(text, TokenIndex::kPerFile, slots.data(), slots.size());
  return 0;
}

}  // namespace

EponInfo& EponInfo::getInstance() {
  static EponInfo instance;
  return instance;
}

int EponInfo::getOnuInfo(EponOnuInfo& record) const {
  static_cast<void>(parseInfo(infoPath_, record));
  return 0;
}

int EponInfo::getAllCntInfo(EponAllCnt& record) const {
  static_cast<void>(parseCounters(countersPath_, record));
  return 0;
}

}  // namespace onu
