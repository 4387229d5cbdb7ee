#include "sim/smbus_emulation.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

namespace onu::sim {
namespace {

constexpr std::uint64_t kModuleAddress = 0x51;

void complain(const std::string& path, const std::string& what) {
  std::fprintf(stderr, "optical-module: %s: %s\n", path.c_str(), what.c_str());
}

// What the kernel checks before it troubles the bus.
bool wellFormed(const Transfer& request) {
  return request.direction <= I2C_SMBUS_READ && request.size <= I2C_SMBUS_I2C_BLOCK_DATA;
}

bool isBlockRead(const Transfer& request) {
  return request.isRead() &&
         (request.size == I2C_SMBUS_I2C_BLOCK_DATA || request.size == I2C_SMBUS_I2C_BLOCK_BROKEN);
}

unsigned length(const Transfer& request) {
  if (isBlockRead(request)) {
    return request.data.block[0];
  }
  return request.isRead() && request.size == I2C_SMBUS_BYTE ? 1 : 0;
}

std::string describe(const Transfer& request) {
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%s command=0x%02x size=%u length=%u",
                request.isRead() ? "read" : "write", request.command, request.size,
                length(request));
  return text.data();
}

}  // namespace

SmbusEmulation::SmbusEmulation(std::string registersPath, const std::string& recordPath)
    : registersPath_(std::move(registersPath)), lastRequest_(std::chrono::steady_clock::now()) {
  if (!recordPath.empty()) {
    record_ = Fd::open(recordPath.c_str(), O_WRONLY | O_CREAT | O_APPEND);
    recordMissing_ = !record_;
    if (recordMissing_) {
      complain(recordPath, std::strerror(errno));
    }
  }
}

bool SmbusEmulation::ready() { return reload() && !recordMissing_; }

// Keeps what the module was while its file cannot be read. Says the same thing only once.
bool SmbusEmulation::reload() {
  std::string complaints;
  const Fd file = Fd::open(registersPath_.c_str(), O_RDONLY);
  if (file) {
    std::string text(65536, '\0');
    text.resize(readFully(file.get(), text.data(), text.size()));
    module_ = parseModule(text, complaints);
  } else {
    complaints = std::strerror(errno);
  }
  if (complaints != lastComplaints_ && !complaints.empty()) {
    complain(registersPath_, complaints);
  }
  lastComplaints_ = std::move(complaints);
  return static_cast<bool>(file);
}

bool SmbusEmulation::selected(BusUser user) const {
  const auto found =
      std::find_if(selections_.begin(), selections_.end(), [user](const Selection& selection) {
        return selection.user.pid == user.pid && selection.user.fd == user.fd;
      });
  return found != selections_.end() && found->address == kModuleAddress;
}

int SmbusEmulation::select(BusUser user, std::uint64_t address) {
  reload();
  int error = 0;
  if (address > 0x7F) {
    error = EINVAL;
  } else if (module_.refuseAddress) {
    error = EBUSY;  // as for an address that a driver in the kernel has taken
  } else {
    for (Selection& old : selections_) {
      if (old.user.pid == user.pid && old.user.fd == user.fd) {
        old = {};
      }
    }
    selections_[nextSelection_] = {user, address};
    nextSelection_ = (nextSelection_ + 1) % selections_.size();
    bytesRead_ = 0;
  }
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "select address=0x%02llx",
                static_cast<unsigned long long>(address));
  record(text.data(), error);
  return error;
}

int SmbusEmulation::transfer(BusUser user, Transfer& request) {
  reload();
  const std::string text = describe(request);
  if (isBlockRead(request) && request.size == I2C_SMBUS_I2C_BLOCK_BROKEN) {
    request.data.block[0] = I2C_SMBUS_BLOCK_MAX;  // whatever the client asked for
  }
  const int error = wellFormed(request) ? perform(user, request) : EINVAL;
  record(text, error);
  return error;
}

int SmbusEmulation::perform(BusUser user, Transfer& request) {
  if (module_.absent || !selected(user)) {
    return ENXIO;
  }
  if (isBlockRead(request)) {
    return readBlock(request);
  }
  if (request.size != I2C_SMBUS_BYTE) {
    return EOPNOTSUPP;
  }
  if (request.isRead()) {
    return readByte(request);
  }
  if (module_.refusePointer) {
    return ENXIO;
  }
  pointer_ = request.command;
  bytesRead_ = 0;
  return 0;
}

int SmbusEmulation::readByte(Transfer& request) {
  if (bytesRead_ >= module_.byteLimit) {
    return EIO;
  }
  ++bytesRead_;
  request.data.byte = module_.registers[pointer_++];
  return 0;
}

int SmbusEmulation::readBlock(Transfer& request) {
  if (request.data.block[0] > I2C_SMBUS_BLOCK_MAX) {
    return EINVAL;
  }
  if (module_.refuseBlockRead) {
    return EIO;
  }
  const std::size_t count = std::min<std::size_t>(request.data.block[0], module_.blockLimit);
  pointer_ = request.command;
  for (std::size_t i = 1; i <= count; ++i) {
    request.data.block[i] = module_.registers[pointer_++];
  }
  request.data.block[0] = static_cast<std::uint8_t>(count);
  return 0;
}

void SmbusEmulation::record(const std::string& request, int error) {
  const auto now = std::chrono::steady_clock::now();
  const std::chrono::duration<double, std::milli> pause = now - lastRequest_;
  lastRequest_ = now;
  if (!record_) {
    return;
  }
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(), "%10.3f ms  %s %s\n", pause.count(), request.c_str(),
                error == 0 ? "ok" : ::strerrorname_np(error));
  writeFully(record_.get(), line.data());
}

}  // namespace onu::sim
