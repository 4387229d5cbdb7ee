#include <csignal>
#include <cstdint>
#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

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

std::string joined(const Texts& commands) {
  std::string text;
  for (const std::string& command : commands) {
    text += command + '\0';
  }
  return text;
}

class Maintenance : public Unit {
 protected:
  // On a unit that stays down when it is told to reboot; `then` goes on in the shell line.
  static Outcome cgiOnce(const Request& request, const std::string& then = "") {
    return shell(std::string("ONU_BOOTS=99 ") + kCgi + then, request);
  }

  // The page that the unit's web server delivers, and then the commands of its shell. Their record
  // is a pipe, at which the shell waits for a reader before its first command: so the page does not
  // come before its reply was complete, or does not come.
  static std::string pageThenWork(const std::string& http, const Texts& commands) {
    const std::string line =
        "mkfifo /record/commands; ONU_BOOTS=99 timeout 20 httpd -i -h /var/tevo/website/www "
        "2>/dev/null;"
        "exec 3<>/record/commands; timeout 20 head -c " +
        std::to_string(joined(commands).size()) + " <&3; rm /record/commands";
    return shell(line, {{}, http}).out;
  }
  // All settings files.
  static std::map<std::string, std::string> settings() {
    std::map<std::string, std::string> files = {{kSettings, readFile(kSettings)}};
    for (const auto& entry : fs::directory_iterator("/etc/xml_params")) {
      files[entry.path()] = readFile(entry.path());
    }
    return files;
  }
};

TEST_F(Maintenance, PageAndWork) {
  struct Case {
    std::string query;
    std::string page;
    Texts commands;
  };
  writeFile("/var/tevo/export_xml.sh", "#!/bin/busybox sh\necho noise\n");
  writeFile("/var/tevo/upgrade.sh", "#!/bin/busybox sh\ngrep SigIgn /proc/self/status >/tmp/sig\n");
  for (const Case& c : std::vector<Case>{
           {"cmd_id=10", json(" 0"), {"/var/tevo/export_xml.sh"}},
           {"cmd_id=10&action=1", json(" 0"), kImporting},
           {"cmd_id=10&action=2", "", {}},
           {"cmd_id=11&action=7", json("0"), {"/sbin/reboot"}},
           {"cmd_id=18&action=1", json("0"), kRestoring},
           {"cmd_id=21&update_type=0", json("0"), kUpgradingFiles},
           {"cmd_id=21&action=1", json("0"), kUpgradingFiles},
           {"cmd_id=21&update_type=1", json("0"), flashing("/tmp/uImage", "/dev/mtd1")},
           {"cmd_id=21&update_type=2", json("0"), flashing("/tmp/rootfs.squashfs", "/dev/mtd2")},
           {"cmd_id=21&update_type=3", json("0"), flashing("/tmp/varfs.jffs2", "/dev/mtd3")},
           {"cmd_id=21&update_type=4", json("1"), {}},
           {"cmd_id=21&update_type=-1", json("1"), {}},
       }) {
    const Outcome outcome = cgiOnce(get(c.query));
    EXPECT_EQ(outcome.out, c.page) << c.query;
    EXPECT_EQ(outcome.commands, c.commands) << c.query;
    if (c.page != json("0")) {
      continue;
    }
    const std::string http = "GET /cgi-bin/onu-cgi?" + c.query + " HTTP/1.0\r\n\r\n";
    EXPECT_EQ(pageThenWork(http, c.commands), c.page + joined(c.commands)) << c.query;
    // The work is done without a client, too: with no output, or one that nobody reads.
    EXPECT_EQ(cgiOnce(get(c.query), " >&-").commands, c.commands) << c.query;
    const std::string gone = std::string("{ until test -e /tmp/gone; do :; done; ONU_BOOTS=99 ") +
                             kCgi + "; } | { exec <&-; touch /tmp/gone; }; rm /tmp/gone";
    EXPECT_EQ(shell(gone, get(c.query)).commands, c.commands) << c.query;
  }
  const std::string ignored = readFile("/tmp/sig");
  ASSERT_EQ(ignored.find("SigIgn:\t"), 0U);
  EXPECT_EQ(std::stoull(ignored.substr(8), nullptr, 16) & 1ULL << (SIGPIPE - 1), 0U)
      << "tools must end on a broken pipe";
}

TEST_F(Maintenance, ExportImportAndDefaults) {
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

TEST_F(Maintenance, RebootStartsTheUnitAnew) {
  const Outcome outcome = cgi(get("cmd_id=11"));
  EXPECT_EQ(outcome.out, json("0")) << "without the messages of the start-up";
  ASSERT_GE(outcome.commands.size(), 2U);
  EXPECT_EQ(outcome.commands[1], "ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up");
}

TEST_F(Maintenance, AnImageReachesItsPartition) {
  std::string image(12 << 20, '\0');
  for (std::uint32_t i = 0; i < image.size(); ++i) {
    image[i] = static_cast<char>(i * 2654435761 >> 24);
  }
  cgiOnce(upload("cmd_id=21&update_type=2", "--x\r\nfilename=\"f\"\r\n\r\n" + image + "\r\n--x--"));
  EXPECT_TRUE(readFile("/dev/mtd2") == image);
}

}  // namespace
}  // namespace onu::test
