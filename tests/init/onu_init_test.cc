// The start-up program with the real bootloader tools on a file-backed environment.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

const std::string kTitle = "\n\n  ***** Init Tevo Prameters **** \n";
const std::string kFactoryIp = kTitle + " IP = 192.168.1.1\n";
const std::string kIp = kTitle + " IP = 10.1.2.3\n";
const std::string kMac = "00:11:22:33:44:55";
const char* const kFactoryAddress = "ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up";
const char* const kRead = "fw_printenv mv_pon_addr >/tmp/mac.txt ";
const char* const kClean = "rm /tmp/mac.txt";

using Lines = std::vector<std::string>;

class Init : public Unit {
 protected:
  static std::string settings(const std::string& mac) {
    return "<cfg><ipInfo><ipAddress>10.1.2.3</ipAddress><netMask>255.0.0.0</netMask><onu_mac>" +
           mac + "</onu_mac></ipInfo></cfg>";
  }
  static std::string bootloaderMac() {
    run("/bin/sh", {"-c", "fw_printenv mv_pon_addr >/tmp/env"});
    return readFile("/tmp/env");
  }
  static void setBootloaderMac(const std::string& mac) {
    ASSERT_EQ(run("/bin/fw_setenv", {"mv_pon_addr", mac}).status, 0);
  }
};

TEST_F(Init, ReplacesThePlaceholderAndReboots) {
  for (const char* mac : {"00:50:43:02:00:00", "00:50:43:12:34:56", "00:50:43"}) {
    writeFile(kSettings, settings(kMac));
    setBootloaderMac(mac);
    const Outcome outcome = init();
    const char* const settled = "ifconfig eth0 10.1.2.3 netmask 255.0.0.0 up";
    EXPECT_EQ(outcome.commands, (Lines{kFactoryAddress, settled, kRead, kClean,
                                       "fw_setenv mv_pon_addr  " + kMac, "/sbin/reboot",
                                       // and after the reboot
                                       kFactoryAddress, settled, kRead, kClean}))
        << mac;
    EXPECT_EQ(outcome.out, kIp + kIp);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(bootloaderMac(), "mv_pon_addr=" + kMac + "\n");
    EXPECT_EQ(readFile(kSettings), settings(kMac));
    EXPECT_FALSE(exists("/tmp/mac.txt"));
  }
}

TEST_F(Init, TakesAnyOtherAddressIntoTheSettings) {
  struct Case {
    std::string bootloader, settings, want;  // in the settings afterwards; empty: nothing written
  };
  for (const Case& c : {
           Case{kMac, "00:AA:BB:CC:DD:EE", kMac},
           {kMac, kMac, ""},
           {"00:aa:bb:cc:dd:ee", "00:AA:BB:CC:DD:EE", "00:aa:bb:cc:dd:ee"},
           {kMac + ":66", "x", kMac},
           {"1", "x", "1"},
           {"a=b=c", "x", "a=b=c"},
       }) {
    const std::string before = settings(c.settings) + "<!-- c -->";
    writeFile(kSettings, before);
    setBootloaderMac(c.bootloader);
    const Outcome outcome = init();
    const bool same = c.want.empty();
    EXPECT_EQ(outcome.out, kIp + (same ? "" : " onu mac address  = " + c.want + "\n"));
    EXPECT_EQ(readFile(kSettings), same ? before : settings(c.want)) << c.bootloader;
    EXPECT_EQ(outcome.commands.size(), 4U) << c.bootloader;
  }
}

TEST_F(Init, StandsUnreadableSettings) {
  std::filesystem::remove(kSettings);
  setBootloaderMac(kMac);
  const Outcome outcome = init();
  EXPECT_EQ(outcome.out, kFactoryIp + " onu mac address  = " + kMac + "\n");
  EXPECT_EQ(outcome.tools, Lines{"ifconfig eth0 192.168.1.1 netmask 255.255.255.0 up"});
  EXPECT_FALSE(exists(kSettings));
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(Init, BringsTheInterfaceUpThoughNobodyListens) {
  const Outcome outcome = run("/bin/busybox", {"sh", "-c", "/usr/sbin/onu-init | :; sleep 1"});
  EXPECT_FALSE(outcome.tools.empty());
}

TEST_F(Init, StopsWithoutABootloaderAddress) {
  std::filesystem::remove("/bin/fw_printenv");
  for (const auto& [tool, out] : std::map<std::string, std::string>{
           {"exit 1", ""},
           {"echo mv_pon_add=00:11:22:33:44:55", ""},
           {"echo mv_pon_addr 00:11:22:33:44:55", ""},
           {"echo mv_pon_addr=", " onu mac address  = \n"},
           {"echo mv_pon_addr; echo mv_pon_addr_2=first; echo mv_pon_addr=second",
            " onu mac address  = first\n"},
           {"yes mv_pon_addr | head -c 3000000", ""},
       }) {
    Unit::reset();
    writeFile("/bin/fw_printenv", "#!/bin/busybox sh\n" + tool + "\n");
    std::filesystem::permissions("/bin/fw_printenv", std::filesystem::perms::owner_all);
    EXPECT_EQ(init().out, kFactoryIp + out) << tool;
  }
  std::filesystem::remove("/bin/fw_printenv");
  std::filesystem::create_symlink("/usr/bin/fw_printenv", "/bin/fw_printenv");
}

TEST_F(Init, StoresTheAddressItIsGiven) {
  writeFile(kSettings, settings("x"));
  Outcome outcome = init({kMac});
  EXPECT_EQ(outcome.out, kTitle + "mv_pon_addr =" + kMac + "\n");
  EXPECT_EQ(outcome.commands, (Lines{"fw_setenv mv_pon_addr  " + kMac,
                                     "cp -f /var/tevo/xml_default/tevo_xml_cfg_file.xml  "
                                     "/var/tevo/website/www/xml/"}));
  EXPECT_EQ(readFile(kSettings), readFile("/factory/var/tevo/xml_default/tevo_xml_cfg_file.xml"));
  EXPECT_EQ(bootloaderMac(), "mv_pon_addr=" + kMac + "\n");

  writeFile(kSettings, "<cfg><ipInfo/></cfg>");
  outcome = init({"a"});
  EXPECT_EQ(outcome.out, kTitle + "set mac address   fail\nmv_pon_addr =a\n");
  EXPECT_EQ(outcome.commands, Lines{"fw_setenv mv_pon_addr  a"});

  EXPECT_EQ(init({"a", "b"}).commands.front(), kFactoryAddress) << "two arguments: a normal run";
}

}  // namespace
}  // namespace onu::test
