#include "device/smbus.h"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <ctime>

namespace onu {
namespace {

constexpr std::size_t kMaxBytes = 100;  // of one byte-wise read

bool transfer(int fd, std::uint8_t direction, std::uint8_t command, std::uint32_t size,
              i2c_smbus_data* data) {
  i2c_smbus_ioctl_data request{};
  request.read_write = direction;
  request.command = command;
  request.size = size;
  request.data = data;
  return ::ioctl(fd, I2C_SMBUS, &request) >= 0;
}

// Reads up to `wanted` (1 to 32) registers from `reg` on. `got` becomes the number the device
// answered with; one that claims more than was asked for is cut to that.
bool readBlock(int fd, std::uint8_t reg, std::uint8_t* out, std::size_t wanted, std::size_t& got) {
  i2c_smbus_data data{};
  data.block[0] = static_cast<std::uint8_t>(wanted);
  // Full blocks go by the older size, which every kernel knows and which always reads 32.
  const std::uint32_t size =
      wanted == I2C_SMBUS_BLOCK_MAX ? I2C_SMBUS_I2C_BLOCK_BROKEN : I2C_SMBUS_I2C_BLOCK_DATA;
  if (!transfer(fd, I2C_SMBUS_READ, reg, size, &data)) {
    return false;
  }
  got = std::min<std::size_t>(data.block[0], wanted);
  std::copy_n(&data.block[1], got, out);
  return true;
}

}  // namespace

bool selectSmbusDevice(int fd, std::uint8_t address) {
  return ::ioctl(fd, I2C_SLAVE, static_cast<unsigned long>(address)) >= 0;
}

bool writeSmbusPointer(int fd, std::uint8_t reg) {
  return transfer(fd, I2C_SMBUS_WRITE, reg, I2C_SMBUS_BYTE, nullptr);
}

bool readSmbusByte(int fd, std::uint8_t& value) {
  i2c_smbus_data data{};
  if (!transfer(fd, I2C_SMBUS_READ, 0, I2C_SMBUS_BYTE, &data)) {
    return false;
  }
  value = data.byte;
  return true;
}

bool readSmbusBlocks(int fd, std::uint8_t first, std::uint8_t* out, std::size_t size) {
  constexpr std::size_t kBlock = I2C_SMBUS_BLOCK_MAX;
  std::uint8_t reg = first;
  std::size_t got = 0;
  while (size > kBlock) {
    // A device that answers with nothing would keep this loop going for ever.
    if (!readBlock(fd, reg, out, kBlock, got) || got == 0) {
      return false;
    }
    out += got;
    size -= got;
    reg = static_cast<std::uint8_t>(reg + got);
  }
  return readBlock(fd, reg, out, size, got);
}

bool readSmbusBytes(int fd, std::uint8_t* out, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    if (i == kMaxBytes) {
      return false;
    }
    sleepOneMillisecond();
    if (!readSmbusByte(fd, out[i])) {
      return false;
    }
  }
  return true;
}

void sleepOneMillisecond() {
  const timespec pause{0, 1'000'000};
  ::nanosleep(&pause, nullptr);
}

}  // namespace onu
