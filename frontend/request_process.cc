#include "frontend/request_process.h"

#include <algorithm>

#include "frontend/debug_trace.h"

namespace onu {

void RequestProcess(WebRequest& request, const std::string& text, const CommandTable& commands) {
  request.text = text;
  parseQuery(request.query, text);
  request.commandNumber = request.query.commandNumber;
  request.action = request.query.action;
  debugTrace("RequestProcess:: request command is %d.", request.commandNumber);

  const Command* const end = commands.rows + commands.size;
  const Command* const row = std::lower_bound(
      commands.rows, end, request.commandNumber,
      [](const Command& command, std::int32_t number) { return command.number < number; });
  if (row != end && row->number == request.commandNumber) {
    return row->process(request);
  }
  debugTrace("RequestProcess::command processor is not find");
  request.reply.sendErrorPage(404, "processor is not find");
}

}  // namespace onu
