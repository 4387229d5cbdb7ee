#include "commands/command_table.h"

#include <array>

#include "commands/accounts.h"
#include "commands/feature_switches.h"
#include "commands/maintenance.h"
#include "commands/network.h"
#include "commands/optical_readings.h"
#include "commands/pon_authentication.h"
#include "commands/pon_counters.h"
#include "commands/port_settings.h"
#include "commands/port_status.h"
#include "commands/traffic_shaping.h"
#include "commands/unit_information.h"
#include "commands/vlan.h"

namespace onu {
namespace {

constexpr std::array kRows = {
    Command{1, "log-in check", checkLogin},
    Command{2, "unit information", getUnitInformation},
    Command{3, "optical readings", getOpticalReadings},
    Command{4, "port status", getPortStatus},
    Command{5, "PON authentication", authenticatePon},
    Command{6, "IP address", configureIpAddress},
    Command{8, "PON counters", getPonCounters},
    Command{10, "configuration export and import", transferConfiguration},
    Command{11, "reboot", rebootUnit},
    Command{14, "loop detection", switchLoopDetection},
    Command{16, "MTU", configureMtu},
    Command{17, "multicast mode", switchMulticastMode},
    Command{18, "factory defaults", restoreDefaults},
    Command{19, "password change of the first account", changeAdminPassword},
    Command{20, "password change of the second account", changeUserPassword},
    Command{21, "firmware upgrade", upgradeFirmware},
    Command{22, "VLAN", configureVlan},
    Command{23, "port settings", configurePort},
    Command{24, "port isolation", switchPortIsolation},
    Command{25, "MAC ageing time", configureMacAging},
    Command{26, "scheduling method", configureScheduling},
    Command{27, "queue weights", configureQueueWeights},
    Command{28, "queue sizes", configureQueueSizes},
    Command{30, "storm limit", configureStormLimit},
};

constexpr bool ascending() {
  for (std::size_t i = 1; i < kRows.size(); ++i) {
    if (kRows[i - 1].number >= kRows[i].number) {
      return false;
    }
  }
  return true;
}
static_assert(ascending(), "commands are looked up by binary search");

}  // namespace

CommandTable commandTable() { return {kRows.data(), kRows.size()}; }

}  // namespace onu
