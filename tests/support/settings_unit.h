#pragma once

#include <map>
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

// A request to a unit with settings, and all that it leaves behind.
struct SettingsCase {
  std::string query;
  std::string reply;
  // The files written, in order, each followed by a blank: "tevo" and the like are settings,
  // "commands" is a command given to the shell, "clish" a script fed to clish.
  std::string written = {};
  Texts changes = {};  // in the settings: from the first text to the second, and so on
  Texts runs = {};     // scripts fed to clish, else commands given to the shell
};

class SettingsUnit : public Unit {
 public:
  using Files = std::map<std::string, std::string>;  // settings files by name
  static constexpr const char* kAbsent = "absent";   // instead of the content of a file

  static std::string path(const std::string& file);

  // Checks each case on a unit with settings in which every value is a text of its own, of two
  // ports and ten queues, but where `other` has a file.
  static void check(const std::vector<SettingsCase>& cases, const Files& other = {});

  // The same where groups are empty, where there are none, where no file is one, without the files.
  static void checkWithoutValues(const std::vector<SettingsCase>& cases);
};

}  // namespace onu::test
