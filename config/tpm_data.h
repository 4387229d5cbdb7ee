#pragma once

#include <array>
#include <string>

#include "config/paths.h"

namespace onu {

// Largest packets, in bytes. The limits hold while mtuSettingEnable is "1".
struct MtuInfo {
  std::string mtuSettingEnable;
  std::string ipv4DsMtu;
  std::string ipv4UsMtu;
  std::string ipv4pppoeUsMtu;
};

// One text per queue, by queue number.
using QueueTexts = std::array<std::string, 8>;

// The traffic manager's settings file: MTU, the transmit queues of module 2 and the receive
// queues of MAC 2 (the file has other modules and MACs, which are nobody's here), and flow
// control. Values are texts whose meaning is the traffic manager's. Every call reads the file anew
// and a setter writes it back as a whole. All return 0, or -1 when the file cannot be opened or the
// first-level group of the value is missing. Writing is not checked.
class TpmData : public Accessor<TpmData, kTpmSettingsPath> {
 public:
  // A missing value leaves its field as it is.
  int getMtu(MtuInfo& info) const;
  // Stores the values that have an element, and writes even when nothing changes.
  int setMtu(const MtuInfo& info) const;

  // Of transmit queue 0. -1 also when there is no queue or it has no method.
  int getSchedMethod(std::string& method) const;
  // Of every transmit queue, of those beyond the eighth too. Writes even when there is none.
  int setSchedMethod(const std::string& method) const;

  // Queues 0 to 7. The text of a queue that is missing, or that does not carry the value, stays as
  // it is; 0 even when there are no queues at all.
  int getQueueWeights(QueueTexts& weights) const;
  int getTxQueueSizes(QueueTexts& sizes) const;
  int getRxQueueSizes(QueueTexts& sizes) const;

  // `queue` is a decimal number, and 0 without one. Writes even when nothing changes. -1 when there
  // is no such queue; those beyond the eighth can be set where the file has them.
  int setQueueWeight(const std::string& queue, const std::string& weight) const;
  int setTxQueueSize(const std::string& queue, const std::string& size) const;
  int setRxQueueSize(const std::string& queue, const std::string& size) const;

  // Writes only when the value has changed. 0 with nothing written when there is no value to set.
  int setFlowControl(const std::string& enabled) const;
};

}  // namespace onu
