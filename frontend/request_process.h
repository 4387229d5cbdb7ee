#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "frontend/web_request.h"

namespace onu {

// A command: its number on the wire, its name for people, and the processor that reads the
// parameters, does the work and writes at most one reply.
struct Command {
  std::int32_t number;
  const char* name;
  void (*process)(WebRequest& request);
};

// All commands, in ascending order of their numbers.
struct CommandTable {
  const Command* rows;
  std::size_t size;
};

// Parses `text` into `request` and runs the command it names; a number without a command gets the
// 404 page "processor is not find".
void RequestProcess(WebRequest& request, const std::string& text, const CommandTable& commands);

}  // namespace onu
