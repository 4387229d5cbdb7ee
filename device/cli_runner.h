#pragma once

#include <string_view>

namespace onu {

// Feeds clish, the unit's own command shell, a script: `mode` selects the node of the shell and
// `command` is given to it there. Line feeds in either are further lines of the script. Nothing
// tells whether clish took the command. The script and the captured output are files of fixed names
// in /tmp, so one process at a time may do this.
class CliRunner {
 public:
  // Discards what clish prints.
  static void run(std::string_view mode, std::string_view command);

  // Leaves what clish prints in /tmp/info_file, which is the caller's to remove.
  static void runAndCapture(std::string_view mode, std::string_view command);

  // Whether forward error correction is on in the PON MAC, as opposed to the settings. False also
  // when clish did not answer.
  static bool isFecEnabled();
};

}  // namespace onu
