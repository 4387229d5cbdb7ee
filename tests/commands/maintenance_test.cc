#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/support/unit.h"
#include "tests/support/web_server.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

Texts flashing(const std::string& image, const std::string& partition) {
  return {"mv /tmp/recFile  " + image, "/usr/sbin/flash_unlock " + partition + " ",
          "/usr/sbin/flash_erase " + partition + " 0 0 ",
          "/bin/dd if=" + image + " of=" + partition, "/sbin/reboot"};
}

const Texts kRestoring = {"/bin/cp -f /var/tevo/xml_default/*.*  /etc/xml_params/",
                          "rm -f /var/xml_params/tevo_xml_cfg_file.xml",
                          "/bin/cp -f /var/tevo/xml_default/tevo_xml_cfg_file.xml  "
                          "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml",
                          "/sbin/reboot"};
const Texts kImporting = {
    "mv /tmp/recFile /tmp/xml_in.tar",
    "tar -xf /tmp/xml_in.tar -C /tmp/ ",
    "cp -f /tmp/xml_config/tevo_xml_cfg_file.xml  /var/tevo/website/www/xml/tevo_xml_cfg_file.xml",
    "cp -rf /tmp/xml_config/*.*  /etc/xml_params/",
    "rm -rf /etc/xml_params/tevo*.*",
    "rm -rf /tmp/xml_config",
    "rm -f /tmp/xml_in.tar"};
const Texts kUpgradingFiles = {"rm -rf /tmp/jffs2_fs.tar.gz", "rm -r /tmp/jffs2_fs.tar.gz",
                               "mv /tmp/recFile  /tmp/jffs2_fs.tar.gz",
                               "cp /tmp/jffs2_fs.tar.gz  /var/", "/var/tevo/upgrade.sh"};

struct Case {
  const char* label;
  std::string query;
  const char* body;  // null: no reply at all
  Texts commands;
};

const std::vector<Case> kCases = {
    {"export", "cmd_id=10", " 0", {"/var/tevo/export_xml.sh"}},
    {"import", "cmd_id=10&action=1", " 0", kImporting},
    {"neither", "cmd_id=10&action=2", nullptr, {}},
    {"reboot", "cmd_id=11&action=7", "0", {"/sbin/reboot"}},
    {"factory defaults", "cmd_id=18&action=1", "0", kRestoring},
    {"archive", "cmd_id=21&update_type=0", "0", kUpgradingFiles},
    {"archive is the default", "cmd_id=21&action=1", "0", kUpgradingFiles},
    {"kernel", "cmd_id=21&update_type=1", "0", flashing("/tmp/uImage", "/dev/mtd1")},
    {"root", "cmd_id=21&update_type=2", "0", flashing("/tmp/rootfs.squashfs", "/dev/mtd2")},
    {"writable", "cmd_id=21&update_type=3", "0", flashing("/tmp/varfs.jffs2", "/dev/mtd3")},
    {"type too great", "cmd_id=21&update_type=4", "1", {}},
    {"type far too great", "cmd_id=21&update_type=4294967297", "1", {}},
    {"negative type", "cmd_id=21&update_type=-1", "1", {}},
};

// The request of a unit that stays down when it is told to reboot.
Request getWithoutBoot(const std::string& query) {
  Request request = get(query);
  request.environment["ONU_BOOTS"] = "99";
  return request;
}

class Maintenance : public Unit {
 protected:
  void SetUp() override {
    Unit::SetUp();
    ::setenv("ONU_BOOTS", "99", 1);  // for what the web server starts
  }
  static std::string exchange(const WebServer& server, const std::string& query) {
    return server.exchange(httpGet(kCgi + query));
  }
  static std::string upload(const WebServer& server, const std::string& query,
                            const std::string& file) {
    return server.exchange(httpUpload(kCgi + query, file));
  }
  // The tools go on when the page is complete: until the last one, the reboot, has been called.
  static bool rebooted() {
    for (int i = 0; i < 3000; ++i) {
      if (readFile("/record/tools").find("reboot\n") != std::string::npos) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  // All settings files.
  static std::map<std::string, std::string> settings() {
    std::map<std::string, std::string> files = {{kSettings, readFile(kSettings)}};
    for (const auto& entry : fs::directory_iterator("/etc/xml_params")) {
      files[entry.path()] = readFile(entry.path());
    }
    return files;
  }

  static constexpr const char* kCgi = "/cgi-bin/onu-cgi?";
  static constexpr const char* kArchive = "/xml/xml_config.tar";
};

TEST_F(Maintenance, RepliesAndCommands) {
  writeFile("/var/tevo/export_xml.sh", "#!/bin/busybox sh\necho noise\n");
  for (const Case& c : kCases) {
    const Outcome outcome = cgi(getWithoutBoot(c.query));
    EXPECT_EQ(outcome.out, c.body == nullptr ? "" : json(c.body)) << c.label;
    EXPECT_EQ(outcome.commands, c.commands) << c.label;
    EXPECT_EQ(outcome.status, 0) << c.label;
  }
}

// While the record of its commands is a pipe the unit's shell waits, before its first command, for
// somebody to read there.
class HeldShell {
 public:
  HeldShell() {
    fs::remove(kRecord);
    EXPECT_EQ(::mkfifo(kRecord, 0600), 0);
  }
  ~HeldShell() {
    ::close(pipe_);
    fs::remove(kRecord);
  }
  HeldShell(const HeldShell&) = delete;
  HeldShell& operator=(const HeldShell&) = delete;

  // Lets it go on for `count` commands, which are returned.
  Texts release(std::size_t count) {
    pipe_ = ::open(kRecord, O_RDWR | O_CLOEXEC);
    Texts commands(1);
    pollfd waiting = {pipe_, POLLIN, 0};
    char c = 0;
    while (commands.size() <= count && ::poll(&waiting, 1, 20000) > 0 &&
           ::read(pipe_, &c, 1) == 1) {
      if (c == '\0') {
        commands.emplace_back();
      } else {
        commands.back() += c;
      }
    }
    commands.pop_back();
    return commands;
  }

 private:
  static constexpr const char* kRecord = "/record/commands";
  int pipe_ = -1;
};

TEST_F(Maintenance, ThePageIsCompleteBeforeTheWork) {
  const WebServer server;
  for (const Case& c : kCases) {
    if (c.query.find("cmd_id=10") == 0 || c.commands.empty()) {
      continue;
    }
    HeldShell shell;
    EXPECT_EQ(exchange(server, c.query), json(c.body)) << c.label;
    EXPECT_EQ(shell.release(c.commands.size()), c.commands) << c.label;
  }
}

TEST_F(Maintenance, IsDoneWithoutItsClient) {
  writeFile("/var/tevo/upgrade.sh", "#!/bin/busybox sh\ngrep SigIgn /proc/self/status >/tmp/sig\n");
  for (const Case& c : {kCases[3], kCases[4], kCases[5]}) {
    Request request = getWithoutBoot(c.query);
    request.closeOutput = true;
    EXPECT_EQ(cgi(request).commands, c.commands) << c.label << ", no output";
    const Outcome outcome =
        run("/bin/busybox",
            {"sh", "-c",
             "{ until test -e /tmp/gone; do :; done; /var/tevo/website/www/cgi-bin/onu-cgi; } | "
             "{ exec <&-; touch /tmp/gone; }"},
            getWithoutBoot(c.query));
    EXPECT_EQ(outcome.commands, c.commands) << c.label << ", client gone";
    fs::remove("/tmp/gone");
  }
  constexpr unsigned long long kBrokenPipe = 1ULL << (SIGPIPE - 1);
  const std::string ignored = readFile("/tmp/sig");
  ASSERT_EQ(ignored.find("SigIgn:\t"), 0U);
  EXPECT_EQ(std::stoull(ignored.substr(8), nullptr, 16) & kBrokenPipe, 0U) << "seen by the tools";
}

TEST_F(Maintenance, ExportAndImport) {
  const WebServer server;
  ASSERT_EQ(exchange(server, "cmd_id=24&action=1&iso=1"), json("0"));
  ASSERT_EQ(exchange(server, "cmd_id=20&pwdold=user&pwdnew=exported"), json("0"));
  const auto exported = settings();
  EXPECT_EQ(exchange(server, "cmd_id=10&action=0"), json(" 0"));
  const std::string archive = httpBody(server.exchange(httpGet(kArchive)));

  ASSERT_EQ(exchange(server, "cmd_id=24&action=1&iso=0"), json("0"));
  ASSERT_EQ(exchange(server, "cmd_id=20&pwdold=exported&pwdnew=later"), json("0"));
  EXPECT_EQ(upload(server, "cmd_id=10&action=1", archive), json(" 0"));
  EXPECT_EQ(settings(), exported);
  EXPECT_TRUE(fs::is_empty("/tmp"));
  EXPECT_FALSE(exists("/record/tools")) << "no reboot";

  // What is no archive changes nothing, and neither does a file that did not arrive whole.
  EXPECT_EQ(upload(server, "cmd_id=10&action=1", "\r\n--no archive"), json(" 0"));
  const std::string cut = "--x\r\nfilename=\"f\"\r\n\r\n" + archive;
  EXPECT_EQ(cgi(test::upload("cmd_id=10&action=1", cut, std::to_string(cut.size() + 1))).out,
            errorPage(400, "receive file fail"));
  EXPECT_EQ(cgi(get("cmd_id=10&action=1")).out, json(" 0"));
  EXPECT_EQ(settings(), exported);
}

TEST_F(Maintenance, FactoryDefaults) {
  auto factory = settings();
  const WebServer server;
  exchange(server, "cmd_id=24&action=1&iso=1");
  exchange(server, "cmd_id=20&pwdold=user&pwdnew=new");
  writeFile("/var/xml_params/tevo_xml_cfg_file.xml", "left from an older version");
  EXPECT_EQ(exchange(server, "cmd_id=18"), json("0"));
  EXPECT_TRUE(rebooted());
  EXPECT_FALSE(exists("/var/xml_params/tevo_xml_cfg_file.xml"));
  // All the defaults are copied there, the main settings among them.
  factory["/etc/xml_params/tevo_xml_cfg_file.xml"] = factory[kSettings];
  EXPECT_EQ(settings(), factory);
}

TEST_F(Maintenance, RebootStartsTheUnitAnew) {
  const Outcome outcome = cgi(get("cmd_id=11"));
  EXPECT_EQ(outcome.out, json("0")) << "without the messages of the start-up";
  ASSERT_GE(outcome.commands.size(), 2U);
  EXPECT_EQ(outcome.commands[1], "ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up");
}

TEST_F(Maintenance, ImagesReachTheirPartitions) {
  constexpr const char* kPartitions[] = {"/dev/mtd1", "/dev/mtd2", "/dev/mtd3"};
  const WebServer server;
  std::string image(12 << 20, '\0');
  std::uint32_t state = 1;
  for (char& c : image) {
    state = state * 1664525 + 1013904223;
    c = static_cast<char>(state >> 24);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    for (const char* partition : kPartitions) {
      writeFile(partition, "old image");
    }
    fs::remove("/record/tools");
    EXPECT_EQ(upload(server, "cmd_id=21&update_type=" + std::to_string(i + 1), image), json("0"));
    ASSERT_TRUE(rebooted()) << kPartitions[i];
    for (const char* partition : kPartitions) {
      const bool same = readFile(partition) == (partition == kPartitions[i] ? image : "old image");
      EXPECT_TRUE(same) << partition << " after an image for " << kPartitions[i];
    }
    image.resize(image.size() / 4 + 1);
  }
}

TEST_F(Maintenance, ArchiveReachesTheFileSystem) {
  const WebServer server;
  writeFile("/tmp/new/var/tevo/website/www/news.html", "new page");
  run("/bin/tar", {"-czf", "/tmp/new.tar.gz", "-C", "/tmp/new", "var"});
  EXPECT_EQ(upload(server, "cmd_id=21", readFile("/tmp/new.tar.gz")), json("0"));
  EXPECT_TRUE(rebooted());
  EXPECT_EQ(httpBody(server.exchange(httpGet("/news.html"))), "new page");
}

}  // namespace
}  // namespace onu::test
