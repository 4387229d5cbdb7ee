#include "device/epon_info.h"

#include <array>
#include <utility>

#include "base/debug_trace.h"
#include "device/epon_tokens.h"
#include "device/status_file.h"

namespace onu {
namespace {

// The driver's tokens in its order. Of the two addresses only the second is reported.
constexpr Field<EponOnuInfo> kInfo[] = {
    {"state", &EponOnuInfo::state},
    {"etherType", &EponOnuInfo::etherType},
    {"unicastMacAddr", &EponOnuInfo::unicastMacAddr},
    {"unicastMacAddr", &EponOnuInfo::unicastMacAddr},
    {"txLLId1", &EponOnuInfo::txLLId1},
    {"txLLId2", &EponOnuInfo::txLLId2},
};

template <typename Record, std::size_t count>
void takeTokens(const std::string& text, TokenIndex indexing, const Field<Record> (&fields)[count],
                Record& record) {
  std::array<std::string, count> tokens;
  splitTokens(text, indexing, tokens.data(), count);
  for (std::size_t i = 0; i < count; ++i) {
    record.*fields[i].member = std::move(tokens[i]);
  }
}

}  // namespace

EponInfo& EponInfo::getInstance() {
  static EponInfo instance;
  return instance;
}

int EponInfo::getOnuInfo(EponOnuInfo& record) const {
  std::string text;
  if (readStatusFile(infoPath_, text) == 0) {
    takeTokens(text, TokenIndex::kPerLine, kInfo, record);
  } else {
    debugTrace("open file infoEpon  fail !");
  }
  return 0;
}

int EponInfo::getAllCntInfo(EponAllCnt& record) const {
  std::string text;
  if (readStatusFile(countersPath_, text) == 0) {
    takeTokens(text, TokenIndex::kPerFile, kEponCounters, record);
  } else {
    debugTrace("open file allCnt  fail !");
  }
  return 0;
}

}  // namespace onu
