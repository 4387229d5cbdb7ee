// The CGI program: answers the one request of this process.

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "commands/command_table.h"
#include "frontend/request_process.h"
#include "frontend/web_data_comm.h"

namespace {

constexpr const char* kUploadPath = "/tmp/recFile";  // where import and upgrade expect their file
constexpr int kBadRequest = 400;

// Puts the text to dispatch into the request: of an upload the query string of its URL, once the
// file is stored. Otherwise answers the request and returns false.
bool readRequest(onu::WebRequest& request) {
  onu::WebDataComm& web = onu::WebDataComm::getInstance();
  onu::ContentType type = onu::ContentType::kForm;
  web.readContentType(type);
  if (type != onu::ContentType::kMultipart) {
    if (web.readRequestText(request.text) != 0) {
      request.reply.sendErrorPage(kBadRequest, "read request fail");
      return false;
    }
    return true;
  }
  if (web.receiveFile(kUploadPath) != 0) {
    ::unlink(kUploadPath);  // a stale or partial file must never reach an import or an upgrade
    request.reply.sendErrorPage(kBadRequest, "receive file fail");
    return false;
  }
  const char* const query = std::getenv("QUERY_STRING");
  request.text = query == nullptr ? "" : query;
  return true;
}

void complain(const char* what) {
  const std::string line = std::string("onu-cgi: ").append(what).append("\n");
  static_cast<void>(!::write(STDERR_FILENO, line.data(), line.size()));
}

}  // namespace

int main() {
  try {
    onu::WebRequest request;
    if (readRequest(request)) {
      onu::RequestProcess(request, request.text, onu::commandTable());
    }
  } catch (const std::exception& error) {
    // Too short a value where a command cuts a part out of it: there is no reply to make of that.
    complain(error.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
