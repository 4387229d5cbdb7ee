// The CGI program: answers the one request of this process.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "base/message.h"
#include "base/unit_lock.h"
#include "commands/command_table.h"
#include "frontend/guard.h"
#include "frontend/request_process.h"
#include "frontend/web_data_comm.h"

namespace {

using onu::complain;
using onu::WebDataComm;

constexpr const char* kUploadPath = "/tmp/recFile";  // where import and upgrade expect their file
constexpr const char* kPartialPath = "/tmp/.recFile";
constexpr std::uint32_t kMaxForm = 1024 * 1024;  // bytes of a form body
constexpr int kBadRequest = 400;
#ifdef ONU_GUARD
constexpr bool kGuarded = true;
#else
constexpr bool kGuarded = false;
#endif

// What cannot be a whole form is refused: cut short it is another request, and the unit's memory
// belongs to the commands. Says why on standard error.
bool readForm(WebDataComm& web, std::string& text) {
  std::uint32_t length = 0;
  auto method = onu::RequestMethod::kNone;
  if (web.readRequestMethod(length, method) != 0) {
    complain({"REQUEST_METHOD is not set"});
    return false;
  }
  if (method == onu::RequestMethod::kPost && length > kMaxForm) {
    complain({"a form of ", std::to_string(length), " bytes is announced, at most ",
              std::to_string(kMaxForm), " are taken"});
    return false;
  }
  web.readRequestText(text);
  if (web.missingBytes() != 0) {
    complain({"the form ends ", std::to_string(web.missingBytes()), " bytes before its announced ",
              std::to_string(length)});
  }
  return web.missingBytes() == 0;
}

// Without the guard any text may become a command: that is the interface.
bool isAllowed(const std::string& text) {
  if (!kGuarded || onu::isHarmless(text)) {
    return true;
  }
  complain({"the request holds what a shell would act on"});
  return false;
}

// Stores the file of an upload, whole or not at all: it has its name when it is complete, and
// neither an old nor a partial one may ever reach an import or an upgrade. Nobody else may receive
// one at the same time; who had to go on without the lock cannot know that.
bool receiveUpload(WebDataComm& web) {
  onu::takeUnitLock();
  if (!onu::unitLockHeld()) {
    complain({"no upload is received beside another request"});
    return false;
  }
  ::unlink(kUploadPath);
  if (web.receiveFile(kPartialPath) != 0 || std::rename(kPartialPath, kUploadPath) != 0) {
    complain({"the upload was not received whole"});
    ::unlink(kPartialPath);
    return false;
  }
  return true;
}

// Fills `text` with what is to be dispatched: of an upload the query string of its URL. False when
// the request has been answered instead.
bool readRequest(const onu::ResponseWriter& reply, std::string& text) {
  WebDataComm& web = WebDataComm::getInstance();
  auto type = onu::ContentType::kForm;
  web.readContentType(type);
  const bool upload = type == onu::ContentType::kMultipart;
  if (upload) {
    text = WebDataComm::queryString();
  }
  if ((!upload && !readForm(web, text)) || !isAllowed(text)) {
    reply.sendErrorPage(kBadRequest, "read request fail");
    return false;
  }
  if (upload && !receiveUpload(web)) {
    reply.sendErrorPage(kBadRequest, "receive file fail");
    return false;
  }
  return true;
}

}  // namespace

int main() {
  try {
    onu::WebRequest request;
    std::string text;
    if (readRequest(request.reply, text)) {
      onu::RequestProcess(request, text, onu::commandTable());
    }
  } catch (const std::out_of_range&) {
    // Too short a value where a command cuts a part out of it, which has said so: there is no reply
    // to make of that.
    return EXIT_FAILURE;
  } catch (const std::exception& error) {
    complain({error.what()});
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
