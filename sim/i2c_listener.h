#pragma once

#include <sys/types.h>

#include <cstdint>
#include <vector>

#include "base/fd.h"
#include "sim/smbus_emulation.h"

struct seccomp_notif;

namespace onu::sim {

// Puts this process and all its descendants under a filter that hands the ioctl requests I2C_SLAVE
// and I2C_SMBUS, on whatever descriptor, to a listener; nothing else is affected, nor are programs
// of another instruction set. Cannot be undone, and only one listener can stand over a process.
// Returns the listener's descriptor (close-on-exec), or -1 with errno where the kernel does not
// allow it.
int installI2cFilter();

// The listening end: answers the filtered requests from `bus`.
class I2cListener {
 public:
  // Takes over the descriptor; keeps `bus`, which must live longer.
  I2cListener(Fd listener, SmbusEmulation& bus);

  int descriptor() const { return listener_.get(); }

  // Whether the kernel lets us look into the memory of `child`, a process just forked.
  static bool canReach(pid_t child);

  // Answers the request that makes the descriptor readable. A client that ended meanwhile is
  // forgotten.
  void serveOne();

  // Whether no process is left under the filter.
  bool deserted() const;

 private:
  int handle(const seccomp_notif& request);
  int handleTransfer(const seccomp_notif& request, BusUser user);
  bool stillThere(const seccomp_notif& request) const;

  Fd listener_;
  SmbusEmulation& bus_;
  // The kernel's idea of these structures may be larger than ours; words, for their alignment.
  std::vector<std::uint64_t> requestArea_;
  std::vector<std::uint64_t> answerArea_;
};

}  // namespace onu::sim
