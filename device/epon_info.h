#pragma once

#include <string>

#include "base/field.h"

namespace onu {

// State of the EPON link, as the driver prints it.
struct EponOnuInfo {
  std::string state;
  std::string etherType;
  std::string unicastMacAddr;
  std::string unicastMacAddr2;
  std::string txLLId1;
  std::string txLLId2;
};

// Frame and registration counters, as the driver prints them (decimal or hexadecimal). The names
// are the driver's and the pages' own, misspellings included.
struct EponAllCnt {
  std::string rxFcsFrames;
  std::string rxShortFrames;
  std::string rxLongFrames;
  std::string rxDataFrames;
  std::string rxCtrlFrames;
  std::string rxReportFrames;
  std::string rxGateFrames;
  std::string txRegisterRequestFrames;
  std::string txRegisterAckFrames;
  std::string txReportFrames;
  std::string txDataFrames;
  std::string txByteAllow;
  std::string swTxTotalFrames;
  std::string swTxErorFrames;
  std::string swRxTotalFrames;
  std::string swRxErrorFrames;
  std::string swRegAckFrames;
  std::string swRegNackFrames;
  std::string swRegDeRegFrames;
  std::string swRegReRegFrams;
};

// The counters by the names that the pages know, in the order in which the driver prints them.
inline constexpr Field<EponAllCnt> kEponCounters[] = {
    {"rxFcsFrames", &EponAllCnt::rxFcsFrames},
    {"rxShortFrames", &EponAllCnt::rxShortFrames},
    {"rxLongFrames", &EponAllCnt::rxLongFrames},
    {"rxDataFrames", &EponAllCnt::rxDataFrames},
    {"rxCtrlFrames", &EponAllCnt::rxCtrlFrames},
    {"rxReportFrames", &EponAllCnt::rxReportFrames},
    {"rxGateFrames", &EponAllCnt::rxGateFrames},
    {"txRegisterRequestFrames", &EponAllCnt::txRegisterRequestFrames},
    {"txRegisterAckFrames", &EponAllCnt::txRegisterAckFrames},
    {"txReportFrames", &EponAllCnt::txReportFrames},
    {"txDataFrames", &EponAllCnt::txDataFrames},
    {"txByteAllow", &EponAllCnt::txByteAllow},
    {"swTxTotalFrames", &EponAllCnt::swTxTotalFrames},
    {"swTxErorFrames", &EponAllCnt::swTxErorFrames},
    {"swRxTotalFrames", &EponAllCnt::swRxTotalFrames},
    {"swRxErrorFrames", &EponAllCnt::swRxErrorFrames},
    {"swRegAckFrames", &EponAllCnt::swRegAckFrames},
    {"swRegNackFrames", &EponAllCnt::swRegNackFrames},
    {"swRegDeRegFrames", &EponAllCnt::swRegDeRegFrames},
    {"swRegReRegFrams", &EponAllCnt::swRegReRegFrams},
};

// The EPON driver's status files. Every call reads the file anew and nothing stays open.
class EponInfo {
 public:
  // Created on first use, never destroyed.
  static EponInfo& getInstance();

  // Both fill `record` and return 0 whatever happens: a file that cannot be opened leaves the
  // record as it is, missing values are empty.
  //
  // The driver prints two addresses and only the second is reported, as unicastMacAddr;
  // unicastMacAddr2 is never written.
  int getOnuInfo(EponOnuInfo& record) const;
  int getAllCntInfo(EponAllCnt& record) const;

 private:
  EponInfo() = default;

  const char* infoPath_ = "/sys/devices/platform/epon/info/infoEpon";
  const char* countersPath_ = "/sys/devices/platform/epon/pm/allCnt";
};

}  // namespace onu
