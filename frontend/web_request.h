#pragma once

#include <cstdint>
#include <string>

#include "frontend/query.h"
#include "frontend/response.h"

namespace onu {

// The one request of a CGI process, handed by reference to the command that answers it.
struct WebRequest {
  WebRequest() = default;
  // Parses `requestText` at once.
  explicit WebRequest(const std::string& requestText) { parseQuery(query, requestText); }

  ParsedQuery query;
  ResponseWriter reply;
  std::int32_t commandNumber = 0;  // copied from the query by RequestProcess
  std::int32_t action = 0;         // by convention 0 reads and 1 writes
  std::string text;
};

}  // namespace onu
