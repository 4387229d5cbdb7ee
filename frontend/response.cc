#include "frontend/response.h"

#include <unistd.h>

#include <csignal>

#include "frontend/fd.h"

namespace onu {
namespace {

// A page that closed the connection must not kill the process (an upgrade may follow the reply);
// the tools started later get the default disposition back.
void writeReply(std::string_view reply) {
  const auto before = ::signal(SIGPIPE, SIG_IGN);
  writeFully(STDOUT_FILENO, reply);
  ::signal(SIGPIPE, before);
}

std::string contentTypeLine(std::string_view type) {
  return std::string("Content-Type: ").append(type.empty() ? "text/html" : type).append("\r\n");
}

}  // namespace

std::string toJsonObject(const JsonFields& fields) {
  if (fields.empty()) {
    return "{}";
  }
  std::string text = "{";
  for (const auto& [key, value] : fields) {
    text.append(key).append(":\"").append(value).append("\",");
  }
  text.back() = '}';
  return text;
}

void ResponseWriter::sendJsonResponse(std::string_view body) const {
  std::string reply = "HTTP/1.0 200 OK\r\n";
  reply.append(contentTypeLine("application/json")).append("Connection: close\r\n\r\n");
  reply.append(body).append("\n");
  writeReply(reply);
}

void ResponseWriter::sendErrorPage(int code, std::string_view message) const {
  const std::string number = std::to_string(code);
  std::string reply = "HTTP/1.1 ";
  reply.append(number).append(message).append("\nConnection:close\n<HTML><BODY><p>Error:");
  reply.append(number).append(" -- ").append(message).append("</p></BODY></HTML>\n");
  writeReply(reply);
}

void ResponseWriter::printContentType(std::string_view type) const {
  writeReply(contentTypeLine(type));
}

}  // namespace onu
