#include "device/i2c_acess.h"

#include <array>
#include <cstring>
#include <utility>

#include "base/fd.h"
#include "base/message.h"
#include "device/smbus.h"

namespace onu {
namespace {

constexpr const char* kBusPath = "/dev/i2c-0";
constexpr std::uint8_t kDiagAddress = 0x51;

// The live values: five pairs, high byte first, in the order of OpticalDiag.
constexpr std::uint8_t kFirstRegister = 96;
constexpr std::size_t kRegisterCount = 10;

void probe(int bus) {
  std::uint8_t value = 0;
  if (selectSmbusDevice(bus, kDiagAddress) && !readSmbusByte(bus, value)) {
    static_cast<void>(readSmbusBlocks(bus, 0, &value, 1));
  }
}

}  // namespace

I2cAcess::I2cAcess(std::string path) : path_(std::move(path)) {
  const Fd bus = Fd::open(path_.c_str(), O_RDWR);
  if (!bus) {
    const int error = errno;
    printErrorLine({"In this SFU could not open I2C bus file ", path_, ", ", std::strerror(error),
                    "(", std::to_string(error), ")"});
    return;
  }
  probe(bus.get());
}

bool I2cAcess::readRegisters(std::uint8_t* out) const {
  const Fd bus = Fd::open(path_.c_str(), O_RDWR);
  if (!bus || !selectSmbusDevice(bus.get(), kDiagAddress)) {
    return false;
  }
  sleepOneMillisecond();
  if (!writeSmbusPointer(bus.get(), kFirstRegister)) {
    return false;
  }
  switch (readMode_) {
    case I2cReadMode::kBlock:
      return readSmbusBlocks(bus.get(), kFirstRegister, out, kRegisterCount);
    case I2cReadMode::kByte:
      return readSmbusBytes(bus.get(), out, kRegisterCount);
  }
  return false;
}

int I2cAcess::readDiag(OpticalDiag& out) const {
  std::array<std::uint8_t, kRegisterCount> bytes{};
  if (!readRegisters(bytes.data())) {
    bytes.fill(0);  // byte mode may have come half-way
  }
  const auto pair = [&bytes](std::size_t i) { return bytes[2 * i] * 256U + bytes[2 * i + 1]; };
  out = OpticalDiag{pair(0), pair(1), pair(2), pair(3), pair(4)};
  return 0;
}

int readOpticalDiagnostics(OpticalDiag& out) { return I2cAcess(kBusPath).readDiag(out); }

}  // namespace onu
