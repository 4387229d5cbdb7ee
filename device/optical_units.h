#pragma once

#include <cstdint>
#include <string>

namespace onu {

// Texts of the raw counts in OpticalDiag, with two decimals, a blank and the unit. All arithmetic
// ends in single precision, which decides how a value half-way between two texts is rounded.

std::string temperatureText(std::uint32_t raw);  // "36.50 ℃"; counts above 32767 are negative
std::string voltageText(std::uint32_t raw);      // "3.29 V"
std::string biasText(std::uint32_t raw);         // "12.34 mA"
std::string powerText(std::uint32_t raw);        // "-17.62 dBm"; 0 gives "-inf dBm"

}  // namespace onu
