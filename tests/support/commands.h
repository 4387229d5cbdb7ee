#pragma once

#include "tests/support/unit.h"

namespace onu::test {

// A text that needs every care (markup, quotes, escapes, a line feed, 64 KiB), and how the settings
// files hold it.
struct OddText {
  std::string text = "<a b='c'>]]> \"%0A+\n;" + std::string(65536, 'x');
  std::string asText = "&lt;a b='c'&gt;]]&gt; \"%0A+\n;" + std::string(65536, 'x');
  std::string asAttribute = "&lt;a b='c'&gt;]]&gt; &quot;%0A+&#xA;;" + std::string(65536, 'x');
};

// A script for the command shell in its usual view.
inline std::string eoam(const std::string& line) { return "eoam\n" + line + "\n\nquit\n"; }

// A request to a unit with settings, and all that it leaves behind.
struct Case {
  std::string query;
  std::string reply;  // the body of a reply, or the whole of another page; nothing for none
  // The files written, in order, each followed by a blank: "tevo" and the like are settings,
  // "commands" is a command given to the shell, "clish" a script fed to clish.
  std::string written = {};
  std::string changes = {};  // in the settings: "from|to|from|to"
  std::string runs = {};     // scripts fed to clish, else commands given to the shell: "one|other"
};

// Commands on units with settings of the test's own.
class Commands : public Unit {
 public:
  using Files = std::map<std::string, std::string>;  // settings files by name
  static constexpr const char* kAbsent = "absent";   // instead of the content of a file
  static const OddText kOdd;
  static const std::string kRun;  // the files written where a script goes through the command shell

  static std::string path(const std::string& file);

  // Checks each case on a unit with settings in which every value is a text of its own, of two
  // ports and ten queues, but where `other` has a file.
  static void check(const std::vector<Case>& cases, const Files& other = {});

  // The same where groups are empty, where there are none, where no file is one, without the files.
  static void checkWithoutValues(const std::vector<Case>& cases);
};

}  // namespace onu::test
