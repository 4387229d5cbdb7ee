#include "sim/i2c_listener.h"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/i2c-dev.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace onu::sim {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__i386__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_I386;
#elif defined(__aarch64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_AARCH64;
#elif defined(__arm__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_ARM;
#else
#error "Name the audit architecture of this machine here."
#endif

constexpr std::uint32_t kRequestArgument = 1;  // ioctl(descriptor, request, pointer)
// The kernel looks at the lower half of the request only, and so does the filter.
constexpr std::size_t kLowHalf = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? 0 : 4;

long seccomp(unsigned operation, unsigned flags, void* argument) {
  return ::syscall(SYS_seccomp, operation, flags, argument);
}

constexpr sock_filter load(std::size_t offset) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

// Skips `ifEqual` or `ifNot` instructions.
constexpr sock_filter compare(std::uint32_t value, std::uint8_t ifEqual, std::uint8_t ifNot) {
  return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, ifEqual, ifNot);
}

constexpr sock_filter finish(std::uint32_t action) { return BPF_STMT(BPF_RET | BPF_K, action); }

std::size_t words(std::size_t bytes) { return (bytes + 7) / 8; }

void* clientAddress(std::uint64_t address) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): an address of the client's, never followed here
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

bool readClient(std::uint32_t pid, std::uint64_t from, void* to, std::size_t size) {
  const iovec here{to, size};
  const iovec there{clientAddress(from), size};
  return ::process_vm_readv(static_cast<pid_t>(pid), &here, 1, &there, 1, 0) ==
         static_cast<ssize_t>(size);
}

bool writeClient(std::uint32_t pid, std::uint64_t to, void* from, std::size_t size) {
  const iovec here{from, size};
  const iovec there{clientAddress(to), size};
  return ::process_vm_writev(static_cast<pid_t>(pid), &here, 1, &there, 1, 0) ==
         static_cast<ssize_t>(size);
}

std::uint64_t addressOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

}  // namespace

int installI2cFilter() {
  std::array program = {
      load(offsetof(seccomp_data, arch)),
      compare(kArchitecture, 0, 5),
      load(offsetof(seccomp_data, nr)),
      compare(SYS_ioctl, 0, 3),
      load(offsetof(seccomp_data, args) + kRequestArgument * sizeof(std::uint64_t) + kLowHalf),
      compare(I2C_SLAVE, 2, 0),
      compare(I2C_SMBUS, 1, 0),
      finish(SECCOMP_RET_ALLOW),
      finish(SECCOMP_RET_USER_NOTIF),
  };
  sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
  // Without this only a privileged process may filter its children.
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
    return -1;
  }
  return static_cast<int>(
      seccomp(SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

I2cListener::I2cListener(Fd listener, SmbusEmulation& bus)
    : listener_(std::move(listener)), bus_(bus) {
  seccomp_notif_sizes sizes{};
  static_cast<void>(seccomp(SECCOMP_GET_NOTIF_SIZES, 0, &sizes));
  requestArea_.resize(words(std::max<std::size_t>(sizes.seccomp_notif, sizeof(seccomp_notif))));
  answerArea_.resize(
      words(std::max<std::size_t>(sizes.seccomp_notif_resp, sizeof(seccomp_notif_resp))));
}

bool I2cListener::canReach(pid_t child) {
  static const char there = 1;
  char here = 0;
  return readClient(static_cast<std::uint32_t>(child), addressOf(&there), &here, 1) &&
         here == there;
}

bool I2cListener::deserted() const {
  pollfd state{listener_.get(), 0, 0};
  return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR)) != 0;
}

void I2cListener::serveOne() {
  std::fill(requestArea_.begin(), requestArea_.end(), 0);  // the kernel insists on it
  std::fill(answerArea_.begin(), answerArea_.end(), 0);
  auto* const request = reinterpret_cast<seccomp_notif*>(requestArea_.data());
  auto* const answer = reinterpret_cast<seccomp_notif_resp*>(answerArea_.data());
  if (::ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_RECV, request) != 0) {
    return;
  }
  answer->id = request->id;
  answer->error = -handle(*request);
  static_cast<void>(::ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_SEND, answer));
}

int I2cListener::handle(const seccomp_notif& request) {
  const BusUser user{request.pid, request.data.args[0]};
  if (static_cast<std::uint32_t>(request.data.args[kRequestArgument]) == I2C_SLAVE) {
    return bus_.select(user, request.data.args[2]);
  }
  return handleTransfer(request, user);
}

// As the kernel's own i2c-dev: nothing is read from or written to addresses that the transfer does
// not need.
int I2cListener::handleTransfer(const seccomp_notif& request, BusUser user) {
  i2c_smbus_ioctl_data arguments{};
  if (!readClient(request.pid, request.data.args[2], &arguments, sizeof arguments)) {
    return EFAULT;
  }
  Transfer transfer;
  transfer.direction = arguments.read_write;
  transfer.command = arguments.command;
  transfer.size = arguments.size;
  const std::uint64_t data = addressOf(arguments.data);
  if (transfer.hasData() && data == 0) {
    return EINVAL;
  }
  const std::size_t dataSize = transfer.size == I2C_SMBUS_BYTE ? 1 : sizeof transfer.data;
  if (transfer.hasData() && !readClient(request.pid, data, &transfer.data, dataSize)) {
    return EFAULT;
  }
  // What was read is the client's only if it is still the one that asked.
  if (!stillThere(request)) {
    return EINTR;
  }
  int error = bus_.transfer(user, transfer);
  if (error == 0 && transfer.isRead() && stillThere(request) &&
      !writeClient(request.pid, data, &transfer.data, dataSize)) {
    error = EFAULT;
  }
  return error;
}

bool I2cListener::stillThere(const seccomp_notif& request) const {
  std::uint64_t id = request.id;
  return ::ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_ID_VALID, &id) == 0;
}

}  // namespace onu::sim
