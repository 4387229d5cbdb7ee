#include "frontend/cgi_log.h"

#include <cstring>
#include <ctime>
#include <string>

namespace onu {
namespace {

constexpr const char* kPath = "/var/cgi.log";
constexpr std::size_t kSizeCap = 0x200000;  // bytes; the line feed that ends the log comes on top

}  // namespace

CgiLog& CgiLog::getInstance() {
  static CgiLog* const instance = new CgiLog;
  return *instance;
}

CgiLog::CgiLog() : file_(Fd::open(kPath, O_RDWR | O_CREAT | O_APPEND)) {}

void CgiLog::writeLine(std::string_view message) {
  if (message.empty() || !file_) {
    return;
  }
  char stamp[kStampSize];
  formatTimeStamp(stamp);
  std::string line = stamp;
  line.append(message);

  const off_t end = ::lseek(file_.get(), 0, SEEK_END);
  const std::size_t size = (end < 0 ? 0 : static_cast<std::size_t>(end)) + line.size();
  if (size > kSizeCap) {
    keepTail(size - kSizeCap);
  }
  writeFully(file_.get(), line.append("\n"));
}

void CgiLog::keepTail(std::size_t excess) {
  std::string tail(kSizeCap, '\0');
  ::lseek(file_.get(), static_cast<off_t>(excess), SEEK_SET);
  tail.resize(readFully(file_.get(), tail.data(), tail.size()));
  file_ = Fd();
  file_ = Fd::open(kPath, O_RDWR | O_CREAT | O_TRUNC | O_APPEND);
  writeFully(file_.get(), tail);
}

void CgiLog::formatTimeStamp(char* stamp) {
  if (stamp == nullptr) {
    return;
  }
  std::memset(stamp, 0, kStampSize);
  const std::time_t now = std::time(nullptr);
  std::strftime(stamp, kStampSize, "[%Y-%m-%d %H:%M:%S]", std::localtime(&now));
}

}  // namespace onu
