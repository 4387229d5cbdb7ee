#include "device/boot_environment.h"

#include <algorithm>
#include <string_view>

#include "device/shell.h"
#include "device/status_file.h"

namespace onu {
namespace {

constexpr char kOutputPath[] = "/tmp/mac.txt";
constexpr char kVariable[] = "mv_pon_addr";
constexpr std::size_t kMacSize = 17;

// The address in what fw_printenv has printed; false when no line holds one.
bool findMac(std::string_view output, std::string& mac) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    const std::size_t equals = line.find('=');
    if (line.substr(0, sizeof(kVariable) - 1) == kVariable && equals != std::string_view::npos) {
      mac = line.substr(equals + 1, kMacSize);
      return true;
    }
    output.remove_prefix(std::min(line.size() + 1, output.size()));
  }
  return false;
}

}  // namespace

int readBootloaderMac(std::string& mac) {
  runShell({"fw_printenv ", kVariable, " >", kOutputPath, " "});
  std::string output;
  if (readStatusFile(kOutputPath, output) != 0) {
    return -1;
  }
  const bool found = findMac(output, mac);
  runShell({"rm ", kOutputPath});
  return found ? 0 : -1;
}

void writeBootloaderMac(const std::string& mac) { runShell({"fw_setenv ", kVariable, "  ", mac}); }

}  // namespace onu
