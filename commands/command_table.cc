#include "commands/command_table.h"

#include <array>

#include "commands/optical_readings.h"
#include "commands/pon_counters.h"

namespace onu {
namespace {

constexpr std::array kRows = {
    Command{3, "optical readings", getOpticalReadings},
    Command{8, "PON counters", getPonCounters},
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
