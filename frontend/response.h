#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace onu {

// Keys and values of a reply, in byte order of the keys; a key set twice keeps its last value. Keys
// are literals of the commands: they are not copied and must outlive the fields.
class JsonFields {
 public:
  struct Entry {
    std::string_view key;
    std::string value;
  };

  struct View {
    std::string_view key;
    std::string_view value;  // copied
  };

  JsonFields() = default;
  JsonFields(std::initializer_list<View> fields);

  // The value of `key`, a new and empty one when there is none yet. Valid until the next new key.
  std::string& operator[](std::string_view key);

  const std::vector<Entry>& sorted() const { return entries_; }

 private:
  std::vector<Entry> entries_;
};

// The object text the pages parse: {key:"value",key2:"value"}, keys unquoted, nothing escaped;
// "{}" when there are no fields.
std::string toJsonObject(const JsonFields& fields);

// Writes replies to standard output, each in one write. Write errors are not reported.
class ResponseWriter {
 public:
  // HTTP 200 with `body` (an object text or a bare status such as "0") as "application/json".
  void sendJsonResponse(std::string_view body) const;

  // The fields as an object, and as an array of that one object.
  void sendObject(const JsonFields& fields) const { sendJsonResponse(toJsonObject(fields)); }
  void sendArray(const JsonFields& fields) const;

  // What became of a setting: "0" for the result 0, else "1" or the page of status 405 with
  // `refusal`.
  void sendStatus(int result) const { sendJsonResponse(result == 0 ? "0" : "1"); }
  void sendStatusOrPage(int result, std::string_view refusal) const;

  // An HTTP error status with a small HTML page. The message follows the code without a blank in
  // the status line, and no empty line ends the headers: the pages look for just that.
  void sendErrorPage(int code, std::string_view message) const;

  // One header line; "text/html" when `type` is empty.
  void printContentType(std::string_view type) const;
};

}  // namespace onu
