#pragma once

#include <string>
#include <vector>

#include "tests/support/unit.h"

namespace onu::test {

// A text that needs every care (markup, quotes, escapes, a line feed, 64 KiB), and how the settings
// files hold it.
struct OddText {
  std::string text = "<a b='c'>]]> \"%0A+\n;" + std::string(65536, 'x');
  std::string asText = "&lt;a b='c'&gt;]]&gt; \"%0A+\n;" + std::string(65536, 'x');
  std::string asAttribute = "&lt;a b='c'&gt;]]&gt; &quot;%0A+&#xA;;" + std::string(65536, 'x');
};

// A request and all that it leaves behind on a unit with the settings of mainSettings() and
// tpmSettings().
struct SettingsCase {
  struct Change {
    std::string from;
    std::string to;
  };
  const char* label;
  std::string query;
  std::string reply;
  // The files written, in order, each followed by a blank: "tevo" and "tpm" are the settings,
  // "commands" is a command given to the shell, "clish" a script fed to clish.
  std::string written;
  std::vector<Change> changes = {};    // all that has changed in the settings
  std::vector<std::string> runs = {};  // scripts fed to clish, else commands given to the shell
};

// Changes from the first text to the second, from the third to the fourth and so on.
template <typename... Texts>
std::vector<SettingsCase::Change> changed(const Texts&... texts) {
  const std::vector<std::string> list = {texts...};
  std::vector<SettingsCase::Change> changes;
  for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
    changes.push_back({list[i], list[i + 1]});
  }
  return changes;
}

// The files written by a request whose script went through clish.
constexpr const char* kClish = "TempFile commands clish commands ";

class SettingsUnit : public Unit {
 public:
  static constexpr const char* kTpm = "/etc/xml_params/tpm_xml_cfg_file.xml";

  // Settings in which every value is a text of its own, with two ports and ten queues.
  static std::string mainSettings();
  static std::string tpmSettings();

  static void check(const SettingsCase& c);

  // The reply where groups are empty, where there are none, and without the files; none of these
  // writes any settings.
  static void checkWithoutValues(const std::string& query, const std::string& reply);
};

}  // namespace onu::test
