#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace onu {

enum class RequestMethod : std::int32_t { kNone = 0, kPost = 1, kGet = 2 };
enum class ContentType : std::int32_t { kForm = 1, kMultipart = 2 };

// Reads the request of this process from the CGI environment and standard input. The operations
// return 0, or -1 as each says; none of them sends anything to the client.
class WebDataComm {
 public:
  // Created on first use, never destroyed.
  static WebDataComm& getInstance();

  // `length` becomes the announced length of the body (POST) or the length of the query string
  // (GET), in bytes; any other method leaves both as they are. -1 when REQUEST_METHOD is not set.
  int readRequestMethod(std::uint32_t& length, RequestMethod& method) const;

  // The query string of a GET or the body of a POST, up to its first zero byte. A body that ends
  // before its announced length is taken as far as it goes; isBodyWhole() tells. -1 when the
  // method cannot be read.
  int readRequestText(std::string& text);

  // Whether the body that readRequestText has read was as long as announced.
  bool isBodyWhole() const { return isBodyWhole_; }

  // Only the first 16 characters of the type count. -1 when CONTENT_TYPE is not set.
  int readContentType(ContentType& type) const;

  // QUERY_STRING, empty when it is not set; the environment's own text.
  std::string_view queryString() const { return query_; }

  // Stores the file of a multipart/form-data body at `path`. -1 for an empty body or one above
  // 16 MiB (`path` is then not touched), and when `path` cannot be written or the body is shorter
  // than announced (`path` then holds what came until then).
  int receiveFile(const char* path);

 private:
  WebDataComm();

  std::string_view query_;
  // Where the last received file would lie by its client's name: "/var/" and the name's end. For
  // diagnosis only, it decides nothing.
  std::array<char, 256> area_{};
  bool isBodyWhole_ = true;
};

}  // namespace onu
