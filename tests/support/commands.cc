#include "tests/support/commands.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>

namespace onu::test {
namespace {

constexpr const char* kSuffix = "_xml_cfg_file.xml";

// Starts to watch the folders that requests write to: what is written again without a change is
// seen as well.
int startWatch() {
  const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (const char* folder : {"/var/tevo/website/www/xml", "/etc/xml_params",
                             "/sys/devices/platform/tpm/cfg_traffic", "/tmp", "/record"}) {
    EXPECT_GE(::inotify_add_watch(queue, folder, IN_MODIFY | IN_MOVED_TO), 0) << folder;
  }
  return queue;
}

std::string endWatch(int queue) {
  std::string names;
  std::array<char, 65536> buffer;
  const ssize_t size = ::read(queue, buffer.data(), buffer.size());
  ::close(queue);
  for (ssize_t at = 0; at < size;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + at, sizeof event);
    const std::string name = buffer.data() + at + sizeof event;
    // A hidden file is a settings file to be: it counts once it has got its name.
    names += name.front() == '.' ? "" : name.substr(0, name.find(kSuffix)) + " ";
    at += static_cast<ssize_t>(sizeof event + event.len);
  }
  return names;
}

bool replaceAll(std::string& text, const std::string& from, const std::string& to) {
  bool found = false;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
    found = true;
  }
  return found;
}

// The files of tests/support/settings as the tree writes them: without a line feed at their end.
Commands::Files settings() {
  Commands::Files files;
  for (const std::string name : {"tevo", "tpm", "eoam", "omci", "gpon"}) {
    files[name] = readFile("/build/settings/" + name + ".xml");
    files[name].pop_back();
  }
  return files;
}

}  // namespace

const OddText Commands::kOdd;
const std::string Commands::kRun = "TempFile commands clish commands ";

std::string Commands::path(const std::string& file) {
  return file == "tevo" ? kSettings : "/etc/xml_params/" + file + kSuffix;
}

void Commands::check(const std::vector<Case>& cases, const Files& other) {
  for (const Case& c : cases) {
    const std::string label = c.query.substr(0, 100) + (other.empty() ? "" : other.begin()->second);
    Files want = other;
    want.merge(settings());
    for (const auto& [file, text] : want) {
      writeFile(path(file), text);
      if (text == kAbsent) {
        std::filesystem::remove(path(file));
      }
    }
    writeFile("/tmp/TempFile", "a longer script that another process has left behind" + c.query);
    const int watch = startWatch();
    const Outcome outcome = cgi(get(c.query));
    EXPECT_EQ(endWatch(watch), c.written) << label;
    const bool isBody = !c.reply.empty() && c.reply.find("HTTP/") == std::string::npos;
    EXPECT_EQ(outcome.out, isBody ? json(c.reply) : c.reply) << label;
    EXPECT_EQ(outcome.scripts.empty() ? outcome.commands : outcome.scripts, split(c.runs, '|'))
        << label;
    const Texts changes = split(c.changes, '|');
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
      bool found = false;
      for (auto& [file, text] : want) {
        found = replaceAll(text, changes[i], changes[i + 1]) || found;
      }
      EXPECT_TRUE(found) << label << ": " << changes[i];
    }
    for (const auto& [file, text] : want) {
      EXPECT_EQ(exists(path(file)) ? readFile(path(file)) : kAbsent, text) << label;
    }
  }
}

void Commands::checkWithoutValues(const std::vector<Case>& cases) {
  for (const char* content : {"<x><vlan/><switch/><mac_aging_time/><storm/><flow_control/></x>", "",
                              "no xml", "\xff\xfe<", kAbsent}) {
    Files files;
    for (const auto& [file, text] : settings()) {
      files[file] = content;
    }
    check(cases, files);
  }
}

}  // namespace onu::test
