#include "device/epon_info.h"

#include <array>
#include <cstddef>
#include <iterator>

#include "base/debug_trace.h"
#include "device/epon_tokens.h"
#include "device/status_file.h"

namespace onu {

EponInfo& EponInfo::getInstance() {
  static EponInfo instance;
  return instance;
}

int EponInfo::getOnuInfo(EponOnuInfo& record) const {
  std::string text;
  if (readStatusFile(infoPath_, text) != 0) {
    debugTrace("open file infoEpon  fail !");
    return 0;
  }
  std::string firstAddress;  // only the second is reported
  const std::array slots = {&record.state,          &record.etherType, &firstAddress,
                            &record.unicastMacAddr, &record.txLLId1,   &record.txLLId2};
  splitTokens(text, TokenIndex::kPerLine, slots.data(), slots.size());
  return 0;
}

int EponInfo::getAllCntInfo(EponAllCnt& record) const {
  std::string text;
  if (readStatusFile(countersPath_, text) != 0) {
    debugTrace("open file allCnt  fail !");
    return 0;
  }
  std::array<std::string*, std::size(kEponCounters)> slots;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    slots[i] = &(record.*kEponCounters[i].member);
  }
  splitTokens(text, TokenIndex::kPerFile, slots.data(), slots.size());
  return 0;
}

}  // namespace onu
