#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace onu::sim {

// The optical module as its register file describes it; sim/optical_module.registers explains each
// kind of line.
struct ModuleSettings {
  std::array<std::uint8_t, 256> registers{};
  bool absent = false;         // nothing answers on the bus
  bool refuseAddress = false;  // the address cannot be selected
  bool refusePointer = false;  // the register pointer cannot be set
  bool refuseBlockRead = false;
  std::size_t blockLimit = 32;       // most bytes that a block read returns
  std::size_t byteLimit = SIZE_MAX;  // single bytes that can be read before that fails
};

// Parses the text of a register file. Later lines win over earlier ones. Lines that make no sense
// are left out and described in `complaints`, one line each with its number.
ModuleSettings parseModule(std::string_view text, std::string& complaints);

}  // namespace onu::sim
