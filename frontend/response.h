#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace onu {

// Keys and values of a reply, in byte order of the keys; a key set twice keeps its last value.
using JsonFields = std::map<std::string, std::string, std::less<>>;

// The object text the pages parse: {key:"value",key2:"value"}, keys unquoted, nothing escaped;
// "{}" when there are no fields.
std::string toJsonObject(const JsonFields& fields);

// Writes replies to standard output, each in one write. Write errors are not reported: a page that
// has gone away must not stop the work of its request.
class ResponseWriter {
 public:
  // HTTP 200 with `body` (an object text or a bare status such as "0") as "application/json".
  void sendJsonResponse(std::string_view body) const;

  // An HTTP error status with a small HTML page. The message follows the code without a blank in
  // the status line, and no empty line ends the headers: the pages look for just that.
  void sendErrorPage(int code, std::string_view message) const;

  // One header line; "text/html" when `type` is empty.
  void printContentType(std::string_view type) const;
};

}  // namespace onu
