#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "frontend/web_request.h"

namespace onu {

// Reads the parameters, does the work and writes at most one reply.
using Processor = void (*)(WebRequest& request);

// What of a command changes the unit and has to wait for other requests that do.
enum class Changes { kNothing, kByStoring, kAlways };

// A command: its number on the wire, and what runs it for action 0, for action 1 and for any other.
// An action without a processor has no reply.
struct Command {
  std::int32_t number;
  Processor read;
  Processor store = nullptr;
  Processor other = nullptr;
  Changes changes = Changes::kByStoring;
};

// All commands.
struct CommandTable {
  const Command* rows;
  std::size_t size;
};

// Parses `text` into `request` and runs the command it names, with the unit's lock where that
// changes anything; a number without a command gets the 404 page "processor is not find". The name
// is kept as the callers know it.
void RequestProcess(WebRequest& request, const std::string& text, const CommandTable& commands);

}  // namespace onu
