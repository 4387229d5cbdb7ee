#include "frontend/guard.h"

#include <array>
#include <string_view>

namespace onu {
namespace {

constexpr std::string_view kActive = "\"'\\`$;|<>(){}*?[]!#~";
constexpr unsigned char kDelete = 0x7F;

// What needs a look: all that is refused, the separator, and the zero byte behind the text.
constexpr std::array<bool, 256> makeStops() {
  std::array<bool, 256> stop{};
  for (unsigned c = 0; c < ' '; ++c) {
    stop[c] = true;
  }
  for (const char c : kActive) {
    stop[static_cast<unsigned char>(c)] = true;
  }
  stop[kDelete] = true;
  stop['&'] = true;
  return stop;
}
constexpr std::array<bool, 256> kStops = makeStops();

bool stops(char c) { return kStops[static_cast<unsigned char>(c)]; }

}  // namespace

bool isHarmless(const std::string& text) {
  const char* next = text.c_str();
  if (*next == '&') {
    return false;
  }
  char stop = 0;
  do {
    do {
      stop = *next++;
    } while (!stops(stop));
  } while (stop == '&' && *next != '&' && *next != '\0');
  return next > text.c_str() + text.size();
}

}  // namespace onu
