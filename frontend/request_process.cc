#include "frontend/request_process.h"

#include <algorithm>

#include "base/debug_trace.h"
#include "base/message.h"
#include "base/unit_lock.h"

namespace onu {
namespace {

void run(const Command& command, WebRequest& request) {
  const bool stores = request.action == 1;
  if (command.changes == Changes::kAlways || (command.changes == Changes::kByStoring && stores)) {
    takeUnitLock();
  }
  const Processor process =
      stores ? command.store : (request.action == 0 ? command.read : command.other);
  if (process != nullptr) {
    process(request);
  }
}

}  // namespace

void RequestProcess(WebRequest& request, const std::string& text, const CommandTable& commands) {
  request.text = text;
  parseQuery(request.query, text);
  request.commandNumber = request.query.commandNumber;
  request.action = request.query.action;
  debugTrace("RequestProcess:: request command is %d.", request.commandNumber);
  setCommandOfComplaints(request.commandNumber);

  const Command* const end = commands.rows + commands.size;
  const Command* const row = std::find_if(commands.rows, end, [&](const Command& command) {
    return command.number == request.commandNumber;
  });
  if (row != end) {
    return run(*row, request);
  }
  debugTrace("RequestProcess::command processor is not find");
  request.reply.sendErrorPage(404, "processor is not find");
}

}  // namespace onu
