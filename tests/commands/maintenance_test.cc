// Commands 10, 11, 18 and 21.

#include <csignal>
#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

std::string flashing(const std::string& image, const std::string& flash) {
  return "mv /tmp/recFile  " + image + "|/usr/sbin/flash_unlock " + flash +
         " |/usr/sbin/flash_erase " + flash + " 0 0 |/bin/dd if=" + image + " of=" + flash +
         "|/sbin/reboot";
}

// On a unit that stays down when it is told to reboot; more of the shell's line around the program.
Outcome cgiOnce(const std::string& query, const std::string& then = "",
                const std::string& first = "") {
  return Unit::run(first + " ONU_BOOTS=99 " + Unit::kCgi + then, get(query));
}

}  // namespace

TEST_F(Unit, MaintenancePageAndWork) {
  writeFile("/var/tevo/export_xml.sh", "#!/bin/busybox sh\necho noise\n");
  writeFile("/var/tevo/upgrade.sh",
            "#!/bin/busybox sh\necho noise\ngrep SigIgn /proc/self/status >/tmp/sig\n");
  for (const auto& [query, body, work] : std::vector<std::array<std::string, 3>>{
           {"cmd_id=10", " 0", "/var/tevo/export_xml.sh"},
           {"cmd_id=10&action=1", " 0",
            "mv /tmp/recFile /tmp/xml_in.tar|tar -xf /tmp/xml_in.tar -C /tmp/ |cp -f "
            "/tmp/xml_config/tevo_xml_cfg_file.xml  "
            "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml|cp -rf /tmp/xml_config/*.*  "
            "/etc/xml_params/|rm -rf /etc/xml_params/tevo*.*|rm -rf /tmp/xml_config|"
            "rm -f /tmp/xml_in.tar"},
           {"cmd_id=11&action=7", "0", "/sbin/reboot"},
           {"cmd_id=18&action=1", "0",
            "/bin/cp -f /var/tevo/xml_default/*.*  /etc/xml_params/|"
            "rm -f /var/xml_params/tevo_xml_cfg_file.xml|/bin/cp -f "
            "/var/tevo/xml_default/tevo_xml_cfg_file.xml  "
            "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml|/sbin/reboot"},
           {"cmd_id=21&action=1", "0",
            "rm -rf /tmp/jffs2_fs.tar.gz|rm -r /tmp/jffs2_fs.tar.gz|mv /tmp/recFile  "
            "/tmp/jffs2_fs.tar.gz|cp /tmp/jffs2_fs.tar.gz  /var/|/var/tevo/upgrade.sh"},
           {"cmd_id=21&update_type=1", "0", flashing("/tmp/uImage", "/dev/mtd1")},
           {"cmd_id=21&update_type=2", "0", flashing("/tmp/rootfs.squashfs", "/dev/mtd2")},
           {"cmd_id=21&update_type=3", "0", flashing("/tmp/varfs.jffs2", "/dev/mtd3")},
           {"cmd_id=21&update_type=4", "1", ""},
           {"cmd_id=21&update_type=-1", "1", ""},
       }) {
    const Outcome outcome = cgiOnce(query);
    EXPECT_EQ(outcome.out, json(body)) << query;
    EXPECT_EQ(outcome.commands, split(work, '|')) << query;
    if (body != "0") {
      continue;
    }
    // The page that the unit's web server delivers, and then the commands of its shell. Their
    // record is a pipe, at which the shell waits for a reader before its first command: so the page
    // does not come before its reply was complete, or does not come.
    const std::string line =
        "mkfifo /record/commands; ONU_BOOTS=99 timeout 20 httpd -i -h /var/tevo/website/www "
        "2>/dev/null; exec 3<>/record/commands; timeout 20 head -c " +
        std::to_string(work.size() + 1) + " <&3 | tr '\\0' '|'; rm /record/commands";
    EXPECT_EQ(run(line, {{}, "GET /cgi-bin/onu-cgi?" + query + " HTTP/1.0\r\n\r\n"}).out,
              json(body) + work + "|");
    // The work is done without a client, too: with no output, or one that nobody reads.
    EXPECT_EQ(cgiOnce(query, " >&-").commands, outcome.commands) << query;
    const char* const last = "; } | { exec <&-; touch /tmp/gone; }; rm /tmp/gone";
    EXPECT_EQ(cgiOnce(query, last, "{ until test -e /tmp/gone; do :; done;").commands,
              outcome.commands)
        << query;
  }
  const std::string ignored = readFile("/tmp/sig");
  ASSERT_EQ(ignored.find("SigIgn:\t"), 0U);
  EXPECT_EQ(std::stoull(ignored.substr(8), nullptr, 16) & 1ULL << (SIGPIPE - 1), 0U)
      << "tools must end on a broken pipe";
}

TEST_F(Unit, ExportImportAndDefaults) {
  const std::string factory = files();
  reply("cmd_id=24&action=1&iso=1");
  reply("cmd_id=20&pwdold=user&pwdnew=exported");
  const std::string exported = files();
  EXPECT_EQ(reply("cmd_id=10&action=0"), json(" 0"));
  const std::string archive = readFile("/var/tevo/website/www/xml/xml_config.tar");

  reply("cmd_id=24&action=1&iso=0");
  reply("cmd_id=20&pwdold=exported&pwdnew=later");
  const std::string import = "cmd_id=10&action=1";
  const std::string head = "--x\r\nfilename=\"f\"\r\n\r\n";
  EXPECT_EQ(cgi(upload(import, head + archive + "\r\n--x--\r\n")).out, json(" 0"));
  EXPECT_EQ(files(), exported);

  // What is no archive changes nothing, and neither does a file that did not arrive whole.
  EXPECT_EQ(cgi(upload(import, head + "\r\n--no archive")).out, json(" 0"));
  cgi(upload(import, head + archive, std::to_string(head.size() + archive.size() + 1)));
  EXPECT_EQ(reply(import), json(" 0"));
  EXPECT_EQ(files(), exported);

  const std::string old = "/var/xml_params/tevo_xml_cfg_file.xml";
  writeFile(old, "left from an older version");
  cgiOnce("cmd_id=18");
  EXPECT_FALSE(exists(old));
  std::filesystem::remove("/etc/xml_params/tevo_xml_cfg_file.xml");  // where all defaults go
  EXPECT_EQ(files(), factory);
}

}  // namespace onu::test
