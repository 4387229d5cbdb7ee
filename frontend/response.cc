#include "frontend/response.h"

#include <unistd.h>

#include <algorithm>

#include "frontend/fd.h"

namespace onu {
std::string& JsonFields::operator[](std::string_view key) {
  constexpr std::size_t kUsual = 24;
  if (fields_.empty()) {
    fields_.reserve(kUsual);
  }
  if (fields_.empty() || fields_.back().key < key) {
    return fields_.emplace_back(key).value;
  }
  const auto at = std::lower_bound(
      fields_.begin(), fields_.end(), key,
      [](const Field& field, std::string_view wanted) { return field.key < wanted; });
  return at->key == key ? at->value : fields_.emplace(at, key)->value;
}

std::string toJsonObject(const JsonFields& fields) {
  constexpr std::size_t kAroundValue = 4;  // :"",
  if (fields.sorted().empty()) {
    return "{}";
  }
  std::size_t size = 1;
  for (const auto& [key, value] : fields.sorted()) {
    size += key.size() + value.size() + kAroundValue;
  }
  std::string text(size, '{');
  char* end = text.data() + 1;
  for (const auto& [key, value] : fields.sorted()) {
    end = std::copy(key.begin(), key.end(), end);
    *end++ = ':';
    *end++ = '"';
    end = std::copy(value.begin(), value.end(), end);
    *end++ = '"';
    *end++ = ',';
  }
  text.back() = '}';
  return text;
}

void ResponseWriter::sendJsonResponse(std::string_view body) const {
  constexpr std::string_view kHead =
      "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n";
  std::string reply;
  reply.reserve(kHead.size() + body.size() + 1);
  reply.append(kHead).append(body).push_back('\n');
  writeFully(STDOUT_FILENO, reply);
}

void ResponseWriter::sendErrorPage(int code, std::string_view message) const {
  const std::string number = std::to_string(code);
  std::string reply = "HTTP/1.1 ";
  reply.append(number).append(message).append("\nConnection:close\n<HTML><BODY><p>Error:");
  reply.append(number).append(" -- ").append(message).append("</p></BODY></HTML>\n");
  writeFully(STDOUT_FILENO, reply);
}

void ResponseWriter::printContentType(std::string_view type) const {
  std::string line = "Content-Type: ";
  line.append(type.empty() ? "text/html" : type).append("\r\n");
  writeFully(STDOUT_FILENO, line);
}

}  // namespace onu
