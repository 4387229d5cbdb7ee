#include "base/unit_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/time.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "base/fd.h"
#include "base/message.h"

namespace onu {
namespace {

constexpr const char* kFolder = "/tmp";
constexpr time_t kPatience = 10;  // seconds

bool g_held = false;

// Waits in the kernel until an alarm ends it. The alarm repeats, since the first one may come
// before the wait has begun, and whoever started this process may have blocked it.
bool waitFor(int folder) {
  struct sigaction onAlarm {};
  onAlarm.sa_handler = [](int) {};
  ::sigaction(SIGALRM, &onAlarm, nullptr);
  sigset_t alarms;
  ::sigemptyset(&alarms);
  ::sigaddset(&alarms, SIGALRM);
  ::sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
  const itimerval alarm = {{1, 0}, {kPatience, 0}};
  ::setitimer(ITIMER_REAL, &alarm, nullptr);
  const bool got = ::flock(folder, LOCK_EX) == 0;
  const int error = errno;
  const itimerval off{};
  ::setitimer(ITIMER_REAL, &off, nullptr);
  errno = error;
  return got;
}

}  // namespace

void takeUnitLock() {
  if (g_held) {
    return;
  }
  static Fd& folder = *new Fd(Fd::open(kFolder, O_RDONLY | O_DIRECTORY));
  g_held = folder && (::flock(folder.get(), LOCK_EX | LOCK_NB) == 0 ||
                      (errno == EWOULDBLOCK && waitFor(folder.get())));
  if (!g_held) {
    complain({"no lock on ", kFolder,
              ", others may be at work: ", errno == EINTR ? "waited 10 s" : std::strerror(errno)});
  }
}

bool unitLockHeld() { return g_held; }

}  // namespace onu
