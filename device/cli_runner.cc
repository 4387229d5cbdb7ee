#include "device/cli_runner.h"

#include "base/debug_trace.h"
#include "base/fd.h"
#include "base/text.h"
#include "device/shell.h"
#include "device/status_file.h"

namespace onu {
namespace {

constexpr const char* kCaptured = "/tmp/info_file";

// `output` follows the script's name in the command line. A script that cannot be written leaves
// clish without one, which changes nothing on the unit.
void runScript(const char* script, std::string_view mode, std::string_view command,
               std::string_view output) {
  {
    const Fd file = Fd::open(script, O_WRONLY | O_CREAT | O_TRUNC);
    if (file) {
      writeFully(file.get(), concat({mode, "\n", command, "\n\nquit\n"}));
    }
  }
  runShell({"clish <", script, output});
  runShell({"rm -f ", script});
}

}  // namespace

void CliRunner::run(std::string_view mode, std::string_view command) {
  runScript("/tmp/TempFile", mode, command, " >/dev/null ");
}

void CliRunner::runAndCapture(std::string_view mode, std::string_view command) {
  runScript("/tmp/TmpFile", mode, command, concat({" > ", kCaptured}));
}

bool CliRunner::isFecEnabled() {
  runAndCapture("eoam", "show pon fec_mode");
  std::string answer;
  if (readStatusFile(kCaptured, answer) != 0) {
    debugTrace("open file info_file  fail !");
    return false;
  }
  runShell({"rm -f ", kCaptured});
  return answer.find("FEC Enabled") != std::string::npos;
}

}  // namespace onu
