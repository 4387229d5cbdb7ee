#include "frontend/web_data_comm.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "base/debug_trace.h"
#include "base/fd.h"
#include "base/number.h"
#include "frontend/upload.h"

namespace onu {
namespace {

constexpr std::uint32_t kMaxUpload = 0x1000000;  // bytes

}  // namespace

WebDataComm::WebDataComm() {
  debugTrace("WebDataComm  getInstance is starting !");
  if (const char* const text = std::getenv("QUERY_STRING")) {
    query_ = text;
  }
}

WebDataComm& WebDataComm::getInstance() {
  static WebDataComm instance;
  return instance;
}

int WebDataComm::readRequestMethod(std::uint32_t& length, RequestMethod& method) const {
  const char* const name = std::getenv("REQUEST_METHOD");
  if (name == nullptr) {
    debugTrace("get REQUEST_METHOD is return NUll");
    return -1;
  }
  const std::string_view verb = name;
  if (verb == "POST") {
    method = RequestMethod::kPost;
    if (const char* const announced = std::getenv("CONTENT_LENGTH")) {
      length = static_cast<std::uint32_t>(toNumber(announced));
    }
  } else if (verb == "GET") {
    method = RequestMethod::kGet;
    length = static_cast<std::uint32_t>(query_.size());
  }
  return 0;
}

int WebDataComm::readRequestText(std::string& text) {
  std::uint32_t length = 0;
  RequestMethod method = RequestMethod::kNone;
  if (readRequestMethod(length, method) != 0) {
    return -1;
  }
  text.clear();
  if (method == RequestMethod::kPost) {
    text.resize(length);
    text.resize(readFully(STDIN_FILENO, text.data(), length));
    isBodyWhole_ = text.size() == length;
    text.resize(std::min(text.find('\0'), text.size()));
    debugTrace("  method = post");
  } else if (method == RequestMethod::kGet) {
    text = query_;
    debugTrace("  method = get");
  }
  return 0;
}

int WebDataComm::readContentType(ContentType& type) const {
  const char* const value = std::getenv("CONTENT_TYPE");
  if (value == nullptr) {
    debugTrace("content type is Null");
    return -1;
  }
  constexpr std::string_view kCompared = std::string_view("multipart/form-data").substr(0, 16);
  const bool multipart = std::string_view(value).substr(0, kCompared.size()) == kCompared;
  type = multipart ? ContentType::kMultipart : ContentType::kForm;
  debugTrace("content type is %d", static_cast<int>(type));
  return 0;
}

int WebDataComm::receiveFile(const char* path) {
  std::uint32_t length = 0;
  RequestMethod method = RequestMethod::kNone;
  if (readRequestMethod(length, method) != 0 || length - 1 >= kMaxUpload) {
    return -1;
  }
  const Fd target = Fd::open(path, O_RDWR | O_CREAT | O_TRUNC);
  if (!target) {
    return -1;
  }
  UploadReader upload(target.get(), area_);
  return upload.read(STDIN_FILENO, length) ? 0 : -1;
}

}  // namespace onu
