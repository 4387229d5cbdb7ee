// Commands 10, 11, 18 and 21.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>

#include "tests/support/commands.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

std::string flashing(const std::string& image, const std::string& partition) {
  return "mv /tmp/recFile  " + image + "|/usr/sbin/flash_unlock " + partition +
         " |/usr/sbin/flash_erase " + partition + " 0 0 |/bin/dd if=" + image + " of=" + partition +
         "|/sbin/reboot";
}

constexpr const char* kRestoring =
    "/bin/cp -f /var/tevo/xml_default/*.*  /etc/xml_params/|"
    "rm -f /var/xml_params/tevo_xml_cfg_file.xml|"
    "/bin/cp -f /var/tevo/xml_default/tevo_xml_cfg_file.xml  "
    "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml|/sbin/reboot";
constexpr const char* kImporting =
    "mv /tmp/recFile /tmp/xml_in.tar|tar -xf /tmp/xml_in.tar -C /tmp/ |"
    "cp -f /tmp/xml_config/tevo_xml_cfg_file.xml  /var/tevo/website/www/xml/tevo_xml_cfg_file.xml|"
    "cp -rf /tmp/xml_config/*.*  /etc/xml_params/|rm -rf /etc/xml_params/tevo*.*|"
    "rm -rf /tmp/xml_config|rm -f /tmp/xml_in.tar";
constexpr const char* kUpgradingFiles =
    "rm -rf /tmp/jffs2_fs.tar.gz|rm -r /tmp/jffs2_fs.tar.gz|"
    "mv /tmp/recFile  /tmp/jffs2_fs.tar.gz|cp /tmp/jffs2_fs.tar.gz  /var/|/var/tevo/upgrade.sh";

// On a unit that stays down when it is told to reboot; `then` goes on in the shell line.
Outcome cgiOnce(const Request& request, const std::string& then = "") {
  return Unit::shell(std::string("ONU_BOOTS=99 ") + Unit::kCgi + then, request);
}

// The page that the unit's web server delivers, and then the commands of its shell, each ended by a
// zero byte. Their record is a pipe, at which the shell waits for a reader before its first
// command: so the page does not come before its reply was complete, or does not come.
std::string pageThenWork(const std::string& query, std::size_t workSize) {
  const std::string line =
      "mkfifo /record/commands; ONU_BOOTS=99 timeout 20 httpd -i -h /var/tevo/website/www "
      "2>/dev/null; exec 3<>/record/commands; timeout 20 head -c " +
      std::to_string(workSize) + " <&3; rm /record/commands";
  return Unit::shell(line, {{}, "GET /cgi-bin/onu-cgi?" + query + " HTTP/1.0\r\n\r\n"}).out;
}

// All settings files.
std::map<std::string, std::string> settings() {
  std::map<std::string, std::string> files = {{Unit::kSettings, readFile(Unit::kSettings)}};
  for (const auto& entry : fs::directory_iterator("/etc/xml_params")) {
    files[entry.path()] = readFile(entry.path());
  }
  return files;
}

}  // namespace

TEST_F(Commands, MaintenancePageAndWork) {
  writeFile("/var/tevo/export_xml.sh", "#!/bin/busybox sh\necho noise\n");
  writeFile("/var/tevo/upgrade.sh",
            "#!/bin/busybox sh\necho noise\ngrep SigIgn /proc/self/status >/tmp/sig\n");
  for (const auto& [query, body, work] : std::vector<std::array<std::string, 3>>{
           {"cmd_id=10", " 0", "/var/tevo/export_xml.sh"},
           {"cmd_id=10&action=1", " 0", kImporting},
           {"cmd_id=10&action=2", "", ""},
           {"cmd_id=11&action=7", "0", "/sbin/reboot"},
           {"cmd_id=18&action=1", "0", kRestoring},
           {"cmd_id=21&update_type=0", "0", kUpgradingFiles},
           {"cmd_id=21&action=1", "0", kUpgradingFiles},
           {"cmd_id=21&update_type=1", "0", flashing("/tmp/uImage", "/dev/mtd1")},
           {"cmd_id=21&update_type=2", "0", flashing("/tmp/rootfs.squashfs", "/dev/mtd2")},
           {"cmd_id=21&update_type=3", "0", flashing("/tmp/varfs.jffs2", "/dev/mtd3")},
           {"cmd_id=21&update_type=4", "1", ""},
           {"cmd_id=21&update_type=-1", "1", ""},
       }) {
    const std::string page = body.empty() ? "" : json(body);
    const Texts commands = split(work, '|');
    const Outcome outcome = cgiOnce(get(query));
    EXPECT_EQ(outcome.out, page) << query;
    EXPECT_EQ(outcome.commands, commands) << query;
    if (body != "0") {
      continue;
    }
    std::string record = work + "|";
    std::replace(record.begin(), record.end(), '|', '\0');
    EXPECT_EQ(pageThenWork(query, record.size()), page + record) << query;
    // The work is done without a client, too: with no output, or one that nobody reads.
    EXPECT_EQ(cgiOnce(get(query), " >&-").commands, commands) << query;
    const std::string gone = std::string("{ until test -e /tmp/gone; do :; done; ONU_BOOTS=99 ") +
                             kCgi + "; } | { exec <&-; touch /tmp/gone; }; rm /tmp/gone";
    EXPECT_EQ(shell(gone, get(query)).commands, commands) << query;
  }
  const std::string ignored = readFile("/tmp/sig");
  ASSERT_EQ(ignored.find("SigIgn:\t"), 0U);
  EXPECT_EQ(std::stoull(ignored.substr(8), nullptr, 16) & 1ULL << (SIGPIPE - 1), 0U)
      << "tools must end on a broken pipe";
}

TEST_F(Commands, ExportImportAndDefaults) {
  const auto factory = settings();
  reply("cmd_id=24&action=1&iso=1");
  reply("cmd_id=20&pwdold=user&pwdnew=exported");
  const auto exported = settings();
  EXPECT_EQ(reply("cmd_id=10&action=0"), json(" 0"));
  const std::string archive = readFile("/var/tevo/website/www/xml/xml_config.tar");

  reply("cmd_id=24&action=1&iso=0");
  reply("cmd_id=20&pwdold=exported&pwdnew=later");
  const std::string import = "cmd_id=10&action=1";
  const std::string head = "--x\r\nfilename=\"f\"\r\n\r\n";
  EXPECT_EQ(cgi(upload(import, head + archive + "\r\n--x--\r\n")).out, json(" 0"));
  EXPECT_EQ(settings(), exported);
  EXPECT_TRUE(fs::is_empty("/tmp"));

  // What is no archive changes nothing, and neither does a file that did not arrive whole.
  EXPECT_EQ(cgi(upload(import, head + "\r\n--no archive")).out, json(" 0"));
  cgi(upload(import, head + archive, std::to_string(head.size() + archive.size() + 1)));
  EXPECT_EQ(reply(import), json(" 0"));
  EXPECT_EQ(settings(), exported);

  writeFile("/var/xml_params/tevo_xml_cfg_file.xml", "left from an older version");
  cgiOnce(get("cmd_id=18"));
  EXPECT_FALSE(exists("/var/xml_params/tevo_xml_cfg_file.xml"));
  fs::remove("/etc/xml_params/tevo_xml_cfg_file.xml");  // all defaults are copied there
  EXPECT_EQ(settings(), factory);
}

}  // namespace onu::test
