#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace onu {

// Keys and values of a reply, in byte order of the keys; a key set twice keeps its last value. Keys
// are literals of the commands: they are not copied and must outlive the fields.
class JsonFields {
 public:
  struct Field {
    explicit Field(std::string_view name) : key(name) {}

    std::string_view key;
    std::string value;
  };

  // The value of `key`, a new and empty one when there is none yet. Valid until the next new key.
  std::string& operator[](std::string_view key);

  const std::vector<Field>& sorted() const { return fields_; }

 private:
  std::vector<Field> fields_;
};

// The object text the pages parse: {key:"value",key2:"value"}, keys unquoted, nothing escaped;
// "{}" when there are no fields.
std::string toJsonObject(const JsonFields& fields);

constexpr int kRefused = 405;  // the HTTP status for a setting that could not be stored

// Writes replies to standard output, each in one write. Write errors are not reported.
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
