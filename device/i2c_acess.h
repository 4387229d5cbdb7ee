#pragma once

#include <cstdint>
#include <string>

namespace onu {

// Live values of the optical module, as the module counts them: a 16-bit register pair each, 0 when
// it was not read. The functions of optical_units.h turn them into text.
struct OpticalDiag {
  std::uint32_t temperature = 0;      // 1/256 degree C, two's complement
  std::uint32_t supplyVoltage = 0;    // 100 uV
  std::uint32_t txBiasCurrent = 0;    // shown as 1 uA
  std::uint32_t txOpticalPower = 0;   // 0.1 uW
  std::uint32_t rxReceivedPower = 0;  // 0.1 uW
};

enum class I2cReadMode : std::int32_t { kByte = 1, kBlock = 2 };

// The diagnostics page of the optical module (SFF-8472, bus address 0x51). The bus is open only
// during a call.
// The name is kept as its callers know it.
class I2cAcess {
 public:
  // Wakes the module with one read whose result is ignored. A bus at `path` that cannot be opened
  // is reported on standard error; the object is usable all the same. Reads go in blocks.
  explicit I2cAcess(std::string path);
  virtual ~I2cAcess() = default;

  void setReadMode(I2cReadMode mode) { readMode_ = mode; }

  // Fills `out` from the module. Always 0: a module that cannot be read leaves five zeros, so a
  // caller cannot tell "no light" from "no module". Sleeps 1 ms, byte mode 1 ms more per byte.
  int readDiag(OpticalDiag& out) const;

 private:
  bool readRegisters(std::uint8_t* out) const;

  std::string path_;
  I2cReadMode readMode_ = I2cReadMode::kBlock;
};

// Fills `out` from the unit's optical module as readDiag does. Always 0.
int readOpticalDiagnostics(OpticalDiag& out);

}  // namespace onu
