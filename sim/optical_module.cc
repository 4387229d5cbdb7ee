// Gives a command an optical module at address 0x51 of whatever it opens as an I2C bus: the
// module's registers come from a text file that can be edited meanwhile, and every request is
// recorded.
//
//   optical-module --registers FILE [--record FILE] [--] COMMAND [ARGUMENT...]
//
// The command and its children run unmodified; the bus they open may be an ordinary file. The exit
// status is the command's, 128 and the number of the signal that ended it, 127 when it cannot be
// started, 77 where the kernel does not allow any of this, 2 for a wrong call. Children that
// outlive the command keep their module.

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "sim/i2c_listener.h"

namespace {

using onu::Fd;
using onu::sim::I2cListener;
using onu::sim::SmbusEmulation;

constexpr int kWrongCall = 2;
constexpr int kNotAllowed = 77;
constexpr int kNotStarted = 127;
constexpr std::array kForwarded = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2};

struct Options {
  std::string registers;
  std::string record;
  char** command = nullptr;
};

bool parse(char** words, Options& options) {
  for (; *words != nullptr && **words == '-'; words += 2) {
    const std::string name = *words;
    if (name == "--") {
      ++words;
      break;
    }
    if ((name != "--registers" && name != "--record") || words[1] == nullptr) {
      return false;
    }
    (name == "--record" ? options.record : options.registers) = words[1];
  }
  options.command = words;
  return *words != nullptr && !options.registers.empty();
}

// The listener's way from the child, under whose filter it comes to be, to the parent: an error
// number and, when that is 0, the descriptor.
union ControlArea {
  cmsghdr header;
  std::array<char, CMSG_SPACE(sizeof(int))> bytes;
};

msghdr message(iovec& text, ControlArea& control) {
  msghdr made{};
  made.msg_iov = &text;
  made.msg_iovlen = 1;
  made.msg_control = control.bytes.data();
  made.msg_controllen = control.bytes.size();
  return made;
}

void sendListener(int socket, int listener, int error) {
  ControlArea control{};
  iovec text{&error, sizeof error};
  msghdr made = message(text, control);
  if (listener < 0) {
    made.msg_controllen = 0;
  } else {
    control.header.cmsg_level = SOL_SOCKET;
    control.header.cmsg_type = SCM_RIGHTS;
    control.header.cmsg_len = CMSG_LEN(sizeof listener);
    std::memcpy(CMSG_DATA(&control.header), &listener, sizeof listener);
  }
  static_cast<void>(::sendmsg(socket, &made, 0));
}

// None, with errno set, when the kernel does not allow the child a listener or us the child's
// memory. Otherwise the child may go on.
Fd receiveListener(int socket, pid_t child) {
  ControlArea control{};
  int error = EPIPE;  // the child ended without a word
  iovec text{&error, sizeof error};
  msghdr made = message(text, control);
  int listener = -1;
  if (::recvmsg(socket, &made, MSG_CMSG_CLOEXEC) > 0 && error == 0 &&
      CMSG_FIRSTHDR(&made) != nullptr) {
    std::memcpy(&listener, CMSG_DATA(&control.header), sizeof listener);
  }
  Fd received(listener);
  if (received && !(I2cListener::canReach(child) && ::send(socket, "", 1, MSG_NOSIGNAL) == 1)) {
    error = errno;
    received = Fd();
  }
  errno = error;
  return received;
}

[[noreturn]] void runCommand(int socket, char** command, const sigset_t& mask) {
  const int listener = onu::sim::installI2cFilter();
  sendListener(socket, listener, listener < 0 ? errno : 0);
  char permission = 0;
  if (listener < 0 || ::read(socket, &permission, 1) != 1) {
    ::_exit(kNotAllowed);
  }
  ::sigprocmask(SIG_SETMASK, &mask, nullptr);
  ::execvp(command[0], command);
  std::fprintf(stderr, "optical-module: %s: %s\n", command[0], std::strerror(errno));
  ::_exit(kNotStarted);
}

// The terminal sends its signals to the command as well; only those meant for us alone go on.
void forwardSignal(int signals, pid_t command) {
  signalfd_siginfo info{};
  if (::read(signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info) &&
      info.ssi_signo != SIGCHLD && info.ssi_code <= 0) {
    ::kill(command, static_cast<int>(info.ssi_signo));
  }
}

// Serves until the command ends; returns its exit status.
int serve(I2cListener& listener, int signals, pid_t command) {
  int status = 0;
  pollfd requests{listener.descriptor(), POLLIN, 0};
  while (::waitpid(command, &status, WNOHANG) == 0) {
    std::array<pollfd, 2> waiting = {{requests, {signals, POLLIN, 0}}};
    static_cast<void>(::poll(waiting.data(), waiting.size(), -1));
    if ((waiting[0].revents & POLLIN) != 0) {
      listener.serveOne();
    } else if (waiting[0].revents != 0) {
      requests.fd = -1;  // nobody left to serve; the command's end is about to be told
    }
    if (waiting[1].revents != 0) {
      forwardSignal(signals, command);
    }
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// For children that outlive the command: goes on in the background, out of the way of whoever waits
// for our end or for that of our output, until the last of them has ended.
void serveOrphans(I2cListener& listener) {
  if (listener.deserted() || ::fork() != 0) {
    return;
  }
  ::setsid();
  if (const Fd null = Fd::open("/dev/null", O_RDWR)) {
    ::dup2(null.get(), STDIN_FILENO);
    ::dup2(null.get(), STDOUT_FILENO);
    ::dup2(null.get(), STDERR_FILENO);
  }
  while (!listener.deserted()) {
    pollfd requests{listener.descriptor(), POLLIN, 0};
    if (::poll(&requests, 1, -1) > 0 && (requests.revents & POLLIN) != 0) {
      listener.serveOne();
    }
  }
}

// Turns the signals that concern us into what can be read from the result; `before` is the mask to
// give to the command.
Fd catchSignals(sigset_t& before) {
  sigset_t caught;
  ::sigemptyset(&caught);
  ::sigaddset(&caught, SIGCHLD);
  for (const int signal : kForwarded) {
    ::sigaddset(&caught, signal);
  }
  ::sigprocmask(SIG_BLOCK, &caught, &before);
  return Fd(::signalfd(-1, &caught, SFD_CLOEXEC));
}

int run(const Options& options) {
  SmbusEmulation bus(options.registers, options.record);
  std::array<int, 2> sockets{};
  if (!bus.ready() ||
      ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
    return kWrongCall;
  }
  Fd ours(sockets[0]);
  Fd theirs(sockets[1]);
  sigset_t before;
  const Fd signals = catchSignals(before);

  const pid_t command = ::fork();
  if (command == 0) {
    ours = Fd();
    runCommand(theirs.get(), options.command, before);
  }
  theirs = Fd();
  Fd descriptor = receiveListener(ours.get(), command);
  if (!descriptor) {
    std::fprintf(stderr, "optical-module: this kernel does not let I2C requests be simulated: %s\n",
                 std::strerror(errno));
    ours = Fd();  // which ends the waiting child
    ::waitpid(command, nullptr, 0);
    return kNotAllowed;
  }
  I2cListener listener(std::move(descriptor), bus);
  const int status = serve(listener, signals.get(), command);
  serveOrphans(listener);
  return status;
}

}  // namespace

int main(int, char** arguments) {
  Options options;
  if (!parse(arguments + 1, options)) {
    std::fputs(
        "usage: optical-module --registers FILE [--record FILE] [--] COMMAND [ARGUMENT...]\n",
        stderr);
    return kWrongCall;
  }
  return run(options);
}
