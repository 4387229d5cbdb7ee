#include "device/optical_units.h"

#include <cmath>

namespace onu {
namespace {

std::string withUnit(float value, const char* unit) {
  std::string text = std::signbit(value) ? "-" : "";
  if (std::isinf(value)) {
    return text.append("inf").append(unit);
  }
  // A float times 100 is exact in a double, so this rounds but once, a tie to the even digit.
  const auto hundredths =
      static_cast<std::uint32_t>(std::rint(std::fabs(static_cast<double>(value) * 100.0)));
  const std::string digits = std::to_string(100 + hundredths % 100);  // the point replaces the 1
  return text.append(std::to_string(hundredths / 100)).append(".").append(digits, 1).append(unit);
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
  const double milliwatts = static_cast<double>(raw) / 10000.0;
  return withUnit(static_cast<float>(10.0 * std::log10(milliwatts)), " dBm");
}

}  // namespace onu
