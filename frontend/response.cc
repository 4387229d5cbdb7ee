#include "frontend/response.h"

#include <unistd.h>

#include <algorithm>

#include "base/fd.h"
#include "base/text.h"

namespace onu {

JsonFields::JsonFields(std::initializer_list<View> fields) {
  for (const auto& [key, value] : fields) {
    (*this)[key] = value;
  }
}

std::string& JsonFields::operator[](std::string_view key) {
  constexpr std::size_t kUsual = 24;
  if (entries_.empty()) {
    entries_.reserve(kUsual);
  }
  if (entries_.empty() || entries_.back().key < key) {
    return entries_.emplace_back(Entry{key, {}}).value;
  }
  const auto at = std::lower_bound(
      entries_.begin(), entries_.end(), key,
      [](const Entry& entry, std::string_view wanted) { return entry.key < wanted; });
  return at->key == key ? at->value : entries_.insert(at, Entry{key, {}})->value;
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
  std::string text = "{";
  text.reserve(size);
  for (const auto& [key, value] : fields.sorted()) {
    text.append(key).append(":\"").append(value).append("\",");
  }
  text.back() = '}';
  return text;
}

void ResponseWriter::sendJsonResponse(std::string_view body) const {
  writeFully(STDOUT_FILENO, concat({"HTTP/1.0 200 OK\r\nContent-Type: application/json\r\n"
                                    "Connection: close\r\n\r\n",
                                    body, "\n"}));
}

void ResponseWriter::sendArray(const JsonFields& fields) const {
  sendJsonResponse(concat({"[", toJsonObject(fields), "]"}));
}

void ResponseWriter::sendStatusOrPage(int result, std::string_view refusal) const {
  constexpr int kRefused = 405;
  if (result != 0) {
    return sendErrorPage(kRefused, refusal);
  }
  sendJsonResponse("0");
}

void ResponseWriter::sendErrorPage(int code, std::string_view message) const {
  const std::string number = std::to_string(code);
  writeFully(STDOUT_FILENO, concat({"HTTP/1.1 ", number, message,
                                    "\nConnection:close\n<HTML><BODY><p>Error:", number, " -- ",
                                    message, "</p></BODY></HTML>\n"}));
}

void ResponseWriter::printContentType(std::string_view type) const {
  writeFully(STDOUT_FILENO, concat({"Content-Type: ", type.empty() ? "text/html" : type, "\r\n"}));
}

}  // namespace onu
