// The CGI program: answers the one request of this process.

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "base/message.h"
#include "base/unit_lock.h"
#include "commands/command_table.h"
#include "frontend/guard.h"
#include "frontend/request_process.h"
#include "frontend/upload.h"
#include "frontend/web_data_comm.h"

namespace {

using onu::complain;
using onu::WebDataComm;

constexpr const char* kPartialPath = "/tmp/.recFile";
constexpr std::uint32_t kMaxForm = 1024 * 1024;  // bytes of a form body
#ifdef ONU_GUARD
constexpr bool kGuarded = true;
#else
constexpr bool kGuarded = false;  // any text may become a command: that is the interface
#endif

// The three below return why the request is not carried out, null when it is.

// What cannot be a whole form is refused: cut short it is another request, and the unit's memory
// belongs to the commands.
const char* readForm(WebDataComm& web, std::string& text) {
  std::uint32_t length = 0;
  auto method = onu::RequestMethod::kNone;
  if (web.readRequestMethod(length, method) != 0) {
    return "REQUEST_METHOD is not set";
  }
  if (method == onu::RequestMethod::kPost && length > kMaxForm) {
    return "the form is announced with more than 1 MiB";
  }
  web.readRequestText(text);
  return web.isBodyWhole() ? nullptr : "the form ends before its announced length";
}

const char* readText(WebDataComm& web, bool upload, std::string& text) {
  if (upload) {
    text = web.queryString();
  } else if (const char* const failure = readForm(web, text)) {
    return failure;
  }
  return kGuarded && !onu::isHarmless(text) ? "the request holds what a shell would act on"
                                            : nullptr;
}

// Stores the file of an upload, whole or not at all: it has its name when it is complete, and
// neither an old nor a partial one may ever reach an import or an upgrade. Nobody else may receive
// one at the same time; who had to go on without the lock cannot know that.
const char* receiveUpload(WebDataComm& web) {
  onu::takeUnitLock();
  if (!onu::unitLockHeld()) {
    return "no upload is received beside another request";
  }
  std::signal(SIGXFSZ, SIG_IGN);  // beyond a limit of file sizes the write is to fail
  ::unlink(onu::kUploadPath);
  errno = 0;
  if (web.receiveFile(kPartialPath) == 0 && std::rename(kPartialPath, onu::kUploadPath) == 0) {
    return nullptr;
  }
  const int error = errno;
  ::unlink(kPartialPath);
  return error != 0 ? std::strerror(error)
                    : "the upload is empty, over 16 MiB or shorter than announced";
}

// Carries out the request, or answers that it is not.
void answer() {
  WebDataComm& web = WebDataComm::getInstance();
  onu::WebRequest request;
  std::string text;  // what is to be dispatched: of an upload the query string of its URL
  auto type = onu::ContentType::kForm;
  web.readContentType(type);
  const bool upload = type == onu::ContentType::kMultipart;

  std::string_view message = "read request fail";
  const char* refused = readText(web, upload, text);
  if (refused != nullptr || upload) {
    onu::parseQuery(request.query, text);
    onu::setCommandOfComplaints(request.query.commandNumber);
  }
  if (refused == nullptr && upload) {
    message = "receive file fail";
    refused = receiveUpload(web);
  }
  if (refused == nullptr) {
    return onu::RequestProcess(request, text, onu::commandTable());
  }
  constexpr int kBadRequest = 400;
  complain({message, ": ", refused});
  request.reply.sendErrorPage(kBadRequest, message);
}

}  // namespace

int main() {
  try {
    answer();
  } catch (const std::exception& error) {
    // Also too short a value where a command cuts a part out of it: there is no reply to make of
    // that.
    complain({error.what()});
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
