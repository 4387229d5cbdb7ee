#include "device/optical_units.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace onu {
namespace {

std::string withUnit(float value, const char* unit) {
  std::array<char, 20> number{};
  std::snprintf(number.data(), number.size(), "%.2f", static_cast<double>(value));
  return std::string(number.data()).append(unit);
}

}  // namespace

std::string temperatureText(std::uint32_t raw) {
  const auto count = static_cast<float>(raw);
  return withUnit((raw > 32767 ? count - 65536.0F : count) * 0.00390625F, " ℃");
}

std::string voltageText(std::uint32_t raw) {
  return withUnit(static_cast<float>(raw) / 10000.0F, " V");
}

// 1 uA a count, not the 2 uA of SFF-8472: the pages rely on that scale.
std::string biasText(std::uint32_t raw) {
  return withUnit(static_cast<float>(raw) / 1000.0F, " mA");
}

std::string powerText(std::uint32_t raw) {
  constexpr double kLn10 = 2.302585092994046;
  const double milliwatts = static_cast<double>(raw) / 10000.0;
  return withUnit(static_cast<float>(10.0 * std::log(milliwatts) / kLn10), " dBm");
}

}  // namespace onu
