// The start-up program with the real bootloader tools on a file-backed environment.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

const char* const kTitle = "\n\n  ***** Init Tevo Prameters **** \n";
const char* const kFactoryAddress = "ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up";
const char* const kRead = "fw_printenv mv_pon_addr >/tmp/mac.txt ";
const char* const kClean = "rm /tmp/mac.txt";

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
    writeFile(kSettings, settings("00:11:22:33:44:55"));
    setBootloaderMac(mac);
    const Outcome outcome = init();
    const std::string settled = "ifconfig eth0 10.1.2.3 netmask 255.0.0.0 up";
    const std::vector<std::string> want = {kFactoryAddress, settled, kRead, kClean,
                                           "fw_setenv mv_pon_addr  00:11:22:33:44:55",
                                           "/sbin/reboot",
                                           // and after the reboot
                                           kFactoryAddress, settled, kRead, kClean};
    EXPECT_EQ(outcome.commands, want) << mac;
    EXPECT_EQ(outcome.out, std::string(kTitle) + " IP = 10.1.2.3\n" + kTitle + " IP = 10.1.2.3\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(bootloaderMac(), "mv_pon_addr=00:11:22:33:44:55\n");
    EXPECT_EQ(readFile(kSettings), settings("00:11:22:33:44:55"));
    EXPECT_FALSE(exists("/tmp/mac.txt"));
  }
}

TEST_F(Init, TakesAnyOtherAddressIntoTheSettings) {
  struct Case {
    const char* label;
    std::string bootloader;
    std::string settings;
    std::string want;  // in the settings afterwards; empty: nothing written or printed
  };
  for (const Case& c : {
           Case{"different", "00:11:22:33:44:55", "00:AA:BB:CC:DD:EE", "00:11:22:33:44:55"},
           {"equal", "00:11:22:33:44:55", "00:11:22:33:44:55", ""},
           {"other case of letters", "00:aa:bb:cc:dd:ee", "00:AA:BB:CC:DD:EE", "00:aa:bb:cc:dd:ee"},
           {"over-long", "00:11:22:33:44:55:66", "x", "00:11:22:33:44:55"},
           {"short", "1", "x", "1"},
           {"with equals signs", "a=b=c", "x", "a=b=c"},
       }) {
    const std::string before = settings(c.settings) + "<!-- c -->";
    writeFile(kSettings, before);
    setBootloaderMac(c.bootloader);
    const Outcome outcome = init();
    const bool written = !c.want.empty();
    EXPECT_EQ(outcome.out, std::string(kTitle) + " IP = 10.1.2.3\n" +
                               (written ? " onu mac address  = " + c.want + "\n" : ""))
        << c.label;
    EXPECT_EQ(readFile(kSettings), written ? settings(c.want) : before) << c.label;
    EXPECT_EQ(outcome.commands.size(), 4U) << c.label;
  }
}

TEST_F(Init, StandsUnreadableSettings) {
  std::filesystem::remove(kSettings);
  setBootloaderMac("00:11:22:33:44:55");
  const Outcome outcome = init();
  EXPECT_EQ(outcome.out,
            std::string(kTitle) + " IP = 192.168.1.1\n onu mac address  = 00:11:22:33:44:55\n");
  EXPECT_EQ(outcome.tools,
            std::vector<std::string>{"ifconfig eth0 192.168.1.1 netmask 255.255.255.0 up"});
  EXPECT_FALSE(exists(kSettings));
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(Init, BringsTheInterfaceUpThoughNobodyListens) {
  const Outcome outcome = run("/bin/busybox", {"sh", "-c", "/sbin/onu-init | :; sleep 1"});
  EXPECT_FALSE(outcome.tools.empty());
}

TEST_F(Init, StopsWithoutABootloaderAddress) {
  struct Case {
    const char* label;
    std::string tool;  // in place of fw_printenv
    std::string out;
  };
  const std::string ip = " IP = 192.168.1.1\n";
  for (const Case& c : {
           Case{"no variable", "exit 1", ip},
           {"other lines", "echo mv_pon_add=00:11:22:33:44:55", ip},
           {"no equals sign", "echo mv_pon_addr 00:11:22:33:44:55", ip},
           {"empty value", "echo mv_pon_addr=", ip + " onu mac address  = \n"},
           {"repeated", "echo mv_pon_addr; echo mv_pon_addr_2=first; echo mv_pon_addr=second",
            ip + " onu mac address  = first\n"},
           {"megabytes", "yes mv_pon_addr | head -c 3000000", ip},
       }) {
    Unit::reset();
    std::filesystem::remove("/bin/fw_printenv");
    writeFile("/bin/fw_printenv", "#!/bin/busybox sh\n" + c.tool + "\n");
    std::filesystem::permissions("/bin/fw_printenv", std::filesystem::perms::owner_all);
    EXPECT_EQ(init().out, kTitle + c.out) << c.label;
  }
  std::filesystem::remove("/bin/fw_printenv");
  std::filesystem::create_symlink("/usr/bin/fw_printenv", "/bin/fw_printenv");
}

TEST_F(Init, StoresTheAddressItIsGiven) {
  const std::string factory = readFile("/var/tevo/xml_default/tevo_xml_cfg_file.xml");
  writeFile(kSettings, settings("x"));
  Outcome outcome = init({"00:11:22:33:44:55"});
  EXPECT_EQ(outcome.out, std::string(kTitle) + "mv_pon_addr =00:11:22:33:44:55\n");
  EXPECT_EQ(outcome.commands,
            (std::vector<std::string>{
                "fw_setenv mv_pon_addr  00:11:22:33:44:55",
                "cp -f /var/tevo/xml_default/tevo_xml_cfg_file.xml  /var/tevo/website/www/xml/"}));
  EXPECT_EQ(readFile(kSettings), factory);
  EXPECT_EQ(bootloaderMac(), "mv_pon_addr=00:11:22:33:44:55\n");

  writeFile(kSettings, "<cfg><ipInfo/></cfg>");
  outcome = init({"a"});
  EXPECT_EQ(outcome.out, std::string(kTitle) + "set mac address   fail\nmv_pon_addr =a\n");
  EXPECT_EQ(outcome.commands, std::vector<std::string>{"fw_setenv mv_pon_addr  a"});

  EXPECT_EQ(init({"a", "b"}).commands.front(), kFactoryAddress) << "two arguments: a normal run";
}

}  // namespace
}  // namespace onu::test
