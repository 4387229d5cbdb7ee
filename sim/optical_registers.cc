#include "sim/optical_registers.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace onu::sim {
namespace {

constexpr std::string_view kBlanks = " \t\r";

// A measured value and the register pair that carries it.
struct Quantity {
  std::string_view name;
  std::size_t reg;
  double (*count)(double value);  // counts of the register, not yet rounded
  double lowest, highest;         // counts
};

double milliwattCount(double dBm) { return 10000.0 * std::pow(10.0, dBm / 10.0); }

constexpr std::array<Quantity, 5> kQuantities = {{
    {"temperature", 96, [](double degrees) { return degrees * 256.0; }, -32768, 32767},
    {"supply_voltage", 98, [](double volts) { return volts * 10000.0; }, 0, 65535},
    {"tx_bias", 100, [](double milliamperes) { return milliamperes * 1000.0; }, 0, 65535},
    {"tx_power", 102, milliwattCount, 0, 65535},
    {"rx_power", 104, milliwattCount, 0, 65535},
}};

struct Fault {
  std::string_view name;
  bool ModuleSettings::*flag;
};

constexpr std::array<Fault, 4> kFaults = {{
    {"absent", &ModuleSettings::absent},
    {"address", &ModuleSettings::refuseAddress},
    {"pointer", &ModuleSettings::refusePointer},
    {"block_read", &ModuleSettings::refuseBlockRead},
}};

struct Limit {
  std::string_view name;
  std::size_t ModuleSettings::*bytes;
};

constexpr std::array<Limit, 2> kLimits = {{
    {"short_block", &ModuleSettings::blockLimit},
    {"short_bytes", &ModuleSettings::byteLimit},
}};

using Words = std::vector<std::string>;

Words split(std::string_view line) {
  line = line.substr(0, line.find('#'));
  Words words;
  for (auto begin = line.find_first_not_of(kBlanks); begin != line.npos;
       begin = line.find_first_not_of(kBlanks)) {
    line.remove_prefix(begin);
    const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
    words.emplace_back(word);
    line.remove_prefix(word.size());
  }
  return words;
}

bool toInteger(const std::string& word, unsigned long highest, unsigned long& value) {
  char* end = nullptr;
  value = std::strtoul(word.c_str(), &end, 0);
  return word.front() >= '0' && word.front() <= '9' && *end == '\0' && value <= highest;
}

bool setQuantity(const Quantity& quantity, const std::string& word, ModuleSettings& module) {
  char* end = nullptr;
  const double count = std::round(quantity.count(std::strtod(word.c_str(), &end)));
  if (*end != '\0' || !(count >= quantity.lowest && count <= quantity.highest)) {
    return false;
  }
  const auto pair = static_cast<std::uint16_t>(static_cast<std::int32_t>(count));
  module.registers[quantity.reg] = static_cast<std::uint8_t>(pair >> 8U);
  module.registers[quantity.reg + 1] = static_cast<std::uint8_t>(pair & 0xFFU);
  return true;
}

bool setRegisters(const Words& words, ModuleSettings& module) {
  unsigned long reg = 0;
  if (words.size() < 3 || !toInteger(words[1], 255, reg) || reg + words.size() - 2 > 256) {
    return false;
  }
  for (std::size_t i = 2; i < words.size(); ++i) {
    unsigned long value = 0;
    if (!toInteger(words[i], 255, value)) {
      return false;
    }
    module.registers[reg++] = static_cast<std::uint8_t>(value);
  }
  return true;
}

bool apply(const Words& words, ModuleSettings& module) {
  if (words[0] == "register") {
    return setRegisters(words, module);
  }
  if (words.size() != 2) {
    return false;
  }
  for (const Limit& limit : kLimits) {
    unsigned long bytes = 0;
    if (words[0] == limit.name && toInteger(words[1], 32, bytes)) {
      module.*limit.bytes = bytes;
      return true;
    }
  }
  if (words[0] == "fault") {
    for (const Fault& fault : kFaults) {
      if (words[1] == fault.name) {
        return module.*fault.flag = true;
      }
    }
    return false;
  }
  for (const Quantity& quantity : kQuantities) {
    if (words[0] == quantity.name) {
      return setQuantity(quantity, words[1], module);
    }
  }
  return false;
}

}  // namespace

ModuleSettings parseModule(std::string_view text, std::string& complaints) {
  ModuleSettings module;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const Words words = split(line);
    if (!words.empty() && !apply(words, module)) {
      complaints.append(complaints.empty() ? "line " : "\n  line ").append(std::to_string(number));
      complaints.append(" makes no sense: ").append(line);
    }
  }
  return module;
}

}  // namespace onu::sim
