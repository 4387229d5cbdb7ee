#include "commands/command_table.h"

#include <array>

#include "commands/accounts.h"
#include "commands/optical_readings.h"
#include "commands/pon_counters.h"

namespace onu {
namespace {

constexpr std::array kRows = {
    Command{1, "log-in check", checkLogin},
    Command{3, "optical readings", getOpticalReadings},
    Command{8, "PON counters", getPonCounters},
    Command{19, "password change of the first account", changeAdminPassword},
    Command{20, "password change of the second account", changeUserPassword},
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

const CommandTable kCommands = {kRows.data(), kRows.size()};

}  // namespace onu
