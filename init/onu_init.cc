// Run at boot: brings up the management interface and makes the MAC address of the bootloader
// environment and of the settings agree. With one argument, a MAC address, stores that in both
// instead; the settings are the factory's afterwards. Always ends with status 0: the boot goes on
// whatever was found.

#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "base/message.h"
#include "base/unit_lock.h"
#include "config/config_data.h"
#include "device/boot_environment.h"
#include "device/shell.h"

namespace {

using onu::printLine;
using onu::runShell;

// Units leave the factory with an address of this range in the bootloader environment; their own is
// in the settings.
constexpr std::string_view kPlaceholderPrefix = "00:50:43";

void storeMac(const std::string& mac) {
  onu::takeUnitLock();  // the web server may be up
  onu::writeBootloaderMac(mac);
  // The factory file replaces the settings just written: the unit starts from it with the new
  // address in the bootloader environment.
  if (onu::ConfigData::getInstance().setMac(mac) == 0) {
    const std::string_view settings = onu::kMainSettingsPath;
    runShell(
        {"cp -f ", onu::kFactorySettingsPath, "  ", settings.substr(0, settings.rfind('/') + 1)});
  }
  printLine({"mv_pon_addr =", mac});
}

// Up with the factory address first, so that the unit can be reached whatever the settings hold.
void bringUpInterface(onu::IpInfo& ip) {
  runShell({"ifconfig eth0 192.168.1.1  netmask 255.255.255.0 up"});
  if (onu::ConfigData::getInstance().getIpInfo(ip) != 0) {
    printLine({" IP = 192.168.1.1"});
    return;
  }
  runShell({"ifconfig eth0 ", ip.ipAddress, " netmask ", ip.netMask, " up"});
  printLine({" IP = ", ip.ipAddress});
}

void reconcileMac(const std::string& settingsMac) {
  std::string mac;
  if (onu::readBootloaderMac(mac) != 0) {
    return;
  }
  if (mac.compare(0, kPlaceholderPrefix.size(), kPlaceholderPrefix) == 0) {
    onu::writeBootloaderMac(settingsMac);
    runShell({"/sbin/reboot"});
  } else if (mac != settingsMac) {
    onu::takeUnitLock();
    onu::ConfigData::getInstance().setMac(mac);
    printLine({" onu mac address  = ", mac});
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    printLine({""});
    printLine({""});
    printLine({"  ***** Init Tevo Prameters **** "});
    if (argc == 2) {
      storeMac(argv[1]);
    } else {
      onu::IpInfo ip;
      bringUpInterface(ip);
      reconcileMac(ip.onu_mac);
    }
  } catch (const std::exception& error) {
    onu::complain({error.what()});
  }
  return EXIT_SUCCESS;
}
