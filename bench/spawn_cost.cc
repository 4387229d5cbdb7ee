// What it costs to run a program once, from its start to its exit.
//
//   spawn_cost [--input FILE] ROUNDS [-- NAME=VALUE... PROGRAM ARGUMENT...]...
//
// Starts the programs one after another, ROUNDS times over, each with just the environment given,
// FILE in a pipe as its standard input (none without it) and a pipe as its standard output. Prints
// a line per program: median and least wall time and median processor time in microseconds, its
// resident and anonymous memory at the exit and its peak of resident memory, in KiB, and its page
// faults.

#include <fcntl.h>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/fd.h"

namespace {

struct Program {
  std::vector<char*> environment;
  std::vector<char*> arguments;
  std::vector<double> wall;  // microseconds
  std::vector<double> cpu;
  long faults = 0;  // of the last run
};

struct Memory {
  long resident = 0;  // KiB
  long anonymous = 0;
  long peak = 0;
};

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "spawn_cost: %s: %s\n", what, std::strerror(errno));
  std::exit(2);
}

struct Pipe {
  Pipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      fail("pipe");
    }
    readEnd = onu::Fd(ends[0]);
    writeEnd = onu::Fd(ends[1]);
  }
  // Takes away what is there by now.
  void drain() const {
    char block[65536];
    ::fcntl(readEnd.get(), F_SETFL, O_NONBLOCK);
    static_cast<void>(!::read(readEnd.get(), block, sizeof(block)));
  }
  onu::Fd readEnd;
  onu::Fd writeEnd;
};

std::string readWhole(const std::string& path) {
  std::string text;
  const onu::Fd file = onu::Fd::open(path.c_str(), O_RDONLY);
  char block[65536];
  std::size_t got = 0;
  do {
    got = onu::readFully(file.get(), block, sizeof(block));
    text.append(block, got);
  } while (got == sizeof(block));
  return text;
}

// Standard input of one program: a process that writes `input` into a pipe. Ends by itself when all
// is read or the reader is gone.
class Feeder {
 public:
  explicit Feeder(std::string_view input) {
    Pipe pipe;
    source_ = std::move(pipe.readEnd);
    process_ = ::fork();
    if (process_ == 0) {
      source_ = onu::Fd();
      ::_exit(onu::writeFully(pipe.writeEnd.get(), input) ? 0 : 1);
    }
  }
  Feeder(const Feeder&) = delete;
  Feeder& operator=(const Feeder&) = delete;
  ~Feeder() {
    source_ = onu::Fd();
    ::waitpid(process_, nullptr, 0);
  }
  int source() const { return source_.get(); }

 private:
  onu::Fd source_;
  pid_t process_ = -1;
};

double microseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void runOnce(Program& program, std::string_view input, const Pipe& output) {
  const Feeder feeder(input);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, feeder.source(), STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, output.writeEnd.get(), STDOUT_FILENO);

  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  pid_t process = 0;
  errno = ::posix_spawn(&process, program.arguments[0], &actions, nullptr, program.arguments.data(),
                        program.environment.data());
  if (errno != 0) {
    fail(program.arguments[0]);
  }
  int status = 0;
  rusage usage{};
  ::wait4(process, &status, 0, &usage);
  const std::chrono::duration<double, std::micro> wall = Clock::now() - start;
  ::posix_spawn_file_actions_destroy(&actions);

  if (status != 0) {
    std::fprintf(stderr, "spawn_cost: %s ended with status %d\n", program.arguments[0], status);
    std::exit(2);
  }
  output.drain();
  program.wall.push_back(wall.count());
  program.faults = usage.ru_minflt + usage.ru_majflt;
  program.cpu.push_back(microseconds(usage.ru_utime) + microseconds(usage.ru_stime));
}

long fieldOf(const std::string& text, const char* name) {
  const std::size_t at = text.find(name);
  return at == std::string::npos ? 0 : std::atol(text.c_str() + at + std::strlen(name));
}

// A run of its own, stopped at its exit: what the kernel adds up for a parent (ru_maxrss) includes
// that parent's own memory.
Memory measureMemory(const Program& program, std::string_view input, const Pipe& output) {
  const Feeder feeder(input);
  const pid_t process = ::fork();
  if (process == 0) {
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    ::dup2(feeder.source(), STDIN_FILENO);
    ::dup2(output.writeEnd.get(), STDOUT_FILENO);
    ::execve(program.arguments[0], program.arguments.data(), program.environment.data());
    ::_exit(2);
  }
  Memory memory;
  int status = 0;
  ::waitpid(process, &status, 0);  // stopped by its execve
  ::ptrace(PTRACE_SETOPTIONS, process, nullptr,
           PTRACE_O_TRACEEXEC | PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
  int signal = 0;
  while (::ptrace(PTRACE_CONT, process, nullptr, signal) == 0 &&
         ::waitpid(process, &status, 0) == process && WIFSTOPPED(status)) {
    signal = status >> 16 != 0 ? 0 : WSTOPSIG(status);
    if (status >> 16 == PTRACE_EVENT_EXIT) {
      const std::string folder = "/proc/" + std::to_string(process);
      const std::string maps = readWhole(folder + "/smaps_rollup");
      memory.resident = fieldOf(maps, "\nRss:");
      memory.anonymous = fieldOf(maps, "\nAnonymous:");
      memory.peak = fieldOf(readWhole(folder + "/status"), "VmHWM:");
    }
  }
  output.drain();
  return memory;
}

std::vector<Program> readPrograms(char** at) {
  std::vector<Program> programs;
  for (; *at != nullptr; ++at) {
    if (std::string_view(*at) == "--") {
      programs.emplace_back();
    } else if (!programs.empty()) {
      Program& program = programs.back();
      const bool variable = program.arguments.empty() && std::strchr(*at, '=') != nullptr;
      (variable ? program.environment : program.arguments).push_back(*at);
    }
  }
  for (Program& program : programs) {
    program.environment.push_back(nullptr);
    program.arguments.push_back(nullptr);
  }
  return programs;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  char** at = argv + 1;
  std::string input;
  if (argc > 2 && std::string_view(*at) == "--input") {
    input = readWhole(at[1]);
    at += 2;
  }
  const int rounds = *at == nullptr ? 0 : std::atoi(*at);
  std::vector<Program> programs = rounds > 0 ? readPrograms(at + 1) : std::vector<Program>();
  const Pipe output;
  for (int round = 0; round < rounds; ++round) {
    for (Program& program : programs) {
      runOnce(program, input, output);
    }
  }
  for (Program& program : programs) {
    const Memory memory = measureMemory(program, input, output);
    const double least = *std::min_element(program.wall.begin(), program.wall.end());
    std::printf("%.1f %.1f %.1f %ld %ld %ld %ld\n", median(program.wall), least,
                median(program.cpu), memory.resident, memory.anonymous, memory.peak,
                program.faults);
  }
  return programs.empty() ? 2 : 0;
}
