#pragma once

#include <cstddef>
#include <cstdint>

namespace onu {

// Transfers to one device of an I2C bus, by the ioctls of Linux's i2c-dev. `fd` is the open bus;
// each operation is false when the bus or the device refuses, with errno saying why.

// Directs the transfers of `fd` to the device at the 7-bit `address`.
bool selectSmbusDevice(int fd, std::uint8_t address);

// Sets the register from which the device answers byte reads.
bool writeSmbusPointer(int fd, std::uint8_t reg);

// Reads the byte at the device's register pointer, which then moves on by one.
bool readSmbusByte(int fd, std::uint8_t& value);

// Read `size` registers into `out`, which a failure may leave partly filled.
//
// In blocks of up to 32 from register `first` on. A last block that comes back short is no failure:
// the bytes it lacks stay as they are in `out`.
bool readSmbusBlocks(int fd, std::uint8_t first, std::uint8_t* out, std::size_t size);
// One at a time from the register pointer on, 1 ms of sleep before each; fails after 100.
bool readSmbusBytes(int fd, std::uint8_t* out, std::size_t size);

// The rest a module needs before and between transfers.
void sleepOneMillisecond();

}  // namespace onu
