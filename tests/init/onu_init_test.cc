// The start-up program with the real bootloader tools on a file-backed environment.

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

const std::string kTitle = "\n\n  ***** Init Tevo Prameters **** \n";
const std::string kFactoryIp = kTitle + " IP = 192.168.1.1\n";
const std::string kIp = kTitle + " IP = 10.1.2.3\n";
const std::string kMac = "00:11:22:33:44:55";
const std::string kFactoryUp = "ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up|";
const std::string kAsk = "fw_printenv mv_pon_addr >/tmp/mac.txt |rm /tmp/mac.txt";
const std::string kUp = kFactoryUp + "ifconfig eth0 10.1.2.3 netmask 255.0.0.0 up|" + kAsk;

Outcome init(const std::string& arguments = "") {
  return Unit::run("/usr/sbin/onu-init " + arguments);
}
Outcome initWith(const std::string& bootloaderMac) {
  Unit::run("fw_setenv mv_pon_addr " + bootloaderMac);
  return init();
}
std::string bootloaderMac() { return Unit::run("fw_printenv mv_pon_addr").out; }
std::string settings(const std::string& mac) {
  return "<cfg><ipInfo><ipAddress>10.1.2.3</ipAddress><netMask>255.0.0.0</netMask><onu_mac>" + mac +
         "</onu_mac></ipInfo></cfg>";
}

TEST_F(Unit, InitMakesTheAddressesAgree) {
  const std::string replaced =
      kUp + "|fw_setenv mv_pon_addr  " + kMac + "|/sbin/reboot|" + kUp;  // and starts anew
  const std::string lower = "00:aa:bb:cc:dd:ee";
  const std::string taken = kIp + " onu mac address  = ";
  // In the bootloader environment, in the settings, and there afterwards: empty if not written.
  for (const auto& [mac, old, now, out, commands] : std::vector<std::array<std::string, 5>>{
           {"00:50:43:02:00:00", kMac, "", kIp + kIp, replaced},
           {"00:50:43", kMac, "", kIp + kIp, replaced},
           {kMac, kMac, "", kIp, kUp},
           {lower, "00:AA:BB:CC:DD:EE", lower, taken + lower + "\n", kUp},
           {kMac + ":66", "x", kMac, taken + kMac + "\n", kUp},
           {"a=b=c", "x", "a=b=c", taken + "a=b=c\n", kUp},
       }) {
    const std::string before = settings(old) + "<!-- c -->";
    writeFile(kSettings, before);
    const Outcome outcome = initWith(mac);
    EXPECT_EQ(outcome.out, out) << mac;
    EXPECT_EQ(outcome.commands, split(commands, '|')) << mac;
    EXPECT_EQ(readFile(kSettings), now.empty() ? before : settings(now)) << mac;
    EXPECT_EQ(bootloaderMac(), "mv_pon_addr=" + (commands == replaced ? kMac : mac) + "\n");
  }
  fs::remove(kSettings);
  const Outcome outcome = initWith(kMac);
  EXPECT_EQ(outcome.out, kFactoryIp + " onu mac address  = " + kMac + "\n");
  EXPECT_FALSE(exists(kSettings));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.commands, split(kFactoryUp + kAsk, '|'));
  EXPECT_EQ(init("| :; sleep 1").commands, outcome.commands) << "nobody listens";
}

TEST_F(Unit, InitStopsWithoutABootloaderAddress) {
  fs::rename("/bin/fw_printenv", "/bin/kept");
  for (const auto& [tool, out] : std::map<std::string, std::string>{
           {"exit 1", ""},
           {"echo mv_pon_add=00:11:22:33:44:55", ""},
           {"echo mv_pon_addr 00:11:22:33:44:55", ""},
           {"echo mv_pon_addr=", " onu mac address  = \n"},
           {"echo mv_pon_addr; echo mv_pon_addr_2=first; echo mv_pon_addr=second",
            " onu mac address  = first\n"},
           {"yes mv_pon_addr | head -c 3000000", ""},
       }) {
    reset();
    writeFile("/bin/fw_printenv", "#!/bin/busybox sh\n" + tool + "\n");
    fs::permissions("/bin/fw_printenv", fs::perms::owner_all);
    EXPECT_EQ(init().out, kFactoryIp + out) << tool;
  }
  fs::rename("/bin/kept", "/bin/fw_printenv");
  fs::create_symlink("/nowhere/at/all", "/tmp/mac.txt");
  EXPECT_EQ(init().out, kFactoryIp) << "no file for what the tool prints";
}

TEST_F(Unit, InitStoresTheAddressItIsGiven) {
  // The factory's settings are not copied over those that do not take the address.
  const std::string copy =
      "|cp -f /var/tevo/xml_default/tevo_xml_cfg_file.xml  /var/tevo/website/www/xml/";
  const std::string factory = readFile("/factory/var/tevo/xml_default/tevo_xml_cfg_file.xml");
  const std::string none = "<cfg><ipInfo/></cfg>";
  for (const auto& [before, message, more, after] : std::vector<std::array<std::string, 4>>{
           {settings("x"), "", copy, factory},
           {none, "set mac address   fail\n", "", none},
           {"<cfg/>", "", "", "<cfg/>"},
       }) {
    writeFile(kSettings, before);
    const Outcome outcome = init(kMac);
    EXPECT_EQ(outcome.out, kTitle + message + "mv_pon_addr =" + kMac + "\n");
    EXPECT_EQ(outcome.commands, split("fw_setenv mv_pon_addr  " + kMac + more, '|'));
    EXPECT_EQ(readFile(kSettings), after);
    EXPECT_EQ(bootloaderMac(), "mv_pon_addr=" + kMac + "\n");
  }
  EXPECT_EQ(init("a b").out.find(kTitle + " IP = "), 0U) << "two arguments: a normal run";
}

}  // namespace
}  // namespace onu::test
