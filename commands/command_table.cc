#include "commands/command_table.h"

#include <array>

#include "commands/accounts.h"
#include "commands/feature_switches.h"
#include "commands/maintenance.h"
#include "commands/network.h"
#include "commands/optical_readings.h"
#include "commands/pon_authentication.h"
#include "commands/pon_counters.h"
#include "commands/traffic_shaping.h"
#include "commands/unit_status.h"
#include "commands/vlan.h"

namespace onu {
namespace {

// The same whatever the action is. It changes nothing, unless the row says so.
constexpr Command always(std::int32_t number, Processor process) {
  return {number, process, process, process, Changes::kNothing};
}

// Waits for other requests also where it does not store.
constexpr Command changing(Command command) {
  command.changes = Changes::kAlways;
  return command;
}

// Number, what reads, what stores, and what answers any other action.
constexpr std::array kRows = {
    always(1, checkLogin),
    always(2, sendUnitInformation),
    always(3, sendOpticalReadings),
    always(4, sendPortStatus),
    Command{5, sendAuthentication, storeAuthentication},
    Command{6, sendIpAddress, storeIpAddress},
    always(8, sendPonCounters),
    changing({10, exportConfiguration, importConfiguration}),
    changing(always(11, rebootUnit)),
    Command{14, sendLoopDetection, storeLoopDetection},
    Command{16, sendMtu, storeMtu},
    Command{17, sendMulticastMode, storeMulticastMode},
    changing(always(18, restoreDefaults)),
    changing(always(19, changeAdminPassword)),
    changing(always(20, changeUserPassword)),
    changing(always(21, upgradeFirmware)),
    Command{22, sendVlan, storeVlan, refuseAction},
    Command{23, sendPorts, storePort},
    Command{24, sendPortIsolation, storePortIsolation},
    Command{25, sendMacAging, storeMacAging},
    Command{26, sendScheduling, storeScheduling},
    Command{27, sendQueueWeights, storeQueueWeight},
    Command{28, sendQueueSizes, storeQueueSize},
    Command{30, sendStormLimit, storeStormLimit},
};

}  // namespace

CommandTable commandTable() { return {kRows.data(), kRows.size()}; }

}  // namespace onu
