#include "device/epon_info.h"

#include <array>
#include <utility>

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
  std::array<std::string, 6> slots;
  splitTokens(text, TokenIndex::kPerLine, slots.data(), slots.size());
  record.state = std::move(slots[0]);
  record.etherType = std::move(slots[1]);
  record.unicastMacAddr = std::move(slots[3]);  // over the first address, slot 2
  record.txLLId1 = std::move(slots[4]);
  record.txLLId2 = std::move(slots[5]);
  return 0;
}

int parseCounters(const char* path, EponAllCnt& record) {
  std::string text;
  if (readStatusFile(path, text) != 0) {
    debugTrace("open file allCnt  fail !");
    return -1;
  }
  std::array<std::string, kCounters.size()> slots;
  splitTokens(text, TokenIndex::kPerFile, slots.data(), slots.size());
  for (std::size_t i = 0; i < slots.size(); ++i) {
    record.*kCounters[i] = std::move(slots[i]);
  }
  return 0;
}

}  // namespace

EponInfo& EponInfo::getInstance() {
  static EponInfo* const instance = new EponInfo;
  return *instance;
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
