#pragma once

#include <linux/i2c.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

#include "base/fd.h"
#include "sim/optical_registers.h"

namespace onu::sim {

// One open bus of one client.
struct BusUser {
  std::uint32_t pid = 0;
  std::uint64_t fd = 0;
};

// One SMBus transfer as a client asks for it.
struct Transfer {
  std::uint8_t direction = 0;  // I2C_SMBUS_READ or I2C_SMBUS_WRITE
  std::uint8_t command = 0;
  std::uint32_t size = 0;  // one of the I2C_SMBUS_... sizes
  i2c_smbus_data data{};

  bool isRead() const { return direction == I2C_SMBUS_READ; }
  // Whether the data goes to or comes from the client at all.
  bool hasData() const { return isRead() || size != I2C_SMBUS_BYTE; }
};

// A bus with one device, the diagnostics page of an optical module at address 0x51, seen as through
// Linux's i2c-dev. The register file is read anew for every request.
class SmbusEmulation {
 public:
  // `recordPath` may be empty: nothing is recorded then. Every request becomes one line of the
  // record: milliseconds since the request before, the request, and "ok" or the error's name.
  SmbusEmulation(std::string registersPath, const std::string& recordPath);

  // False when a file cannot be opened, with the reason on standard error.
  bool ready();

  // Both return 0 or the error number that the client gets.
  int select(BusUser user, std::uint64_t address);
  int transfer(BusUser user, Transfer& request);

 private:
  struct Selection {
    BusUser user;
    std::uint64_t address = 0;
  };

  bool reload();
  bool selected(BusUser user) const;
  int perform(BusUser user, Transfer& request);
  int readByte(Transfer& request);
  int readBlock(Transfer& request);
  void record(const std::string& request, int error);

  std::string registersPath_;
  Fd record_;
  bool recordMissing_ = false;
  ModuleSettings module_;
  std::string lastComplaints_;
  std::uint8_t pointer_ = 0;
  std::size_t bytesRead_ = 0;  // one at a time, since the address or the pointer was last set
  // The latest selections, oldest overwritten first: clients select anew whenever they open the
  // bus, so an old one belongs to a process that has ended.
  std::array<Selection, 64> selections_{};
  std::size_t nextSelection_ = 0;
  std::chrono::steady_clock::time_point lastRequest_;
};

}  // namespace onu::sim
