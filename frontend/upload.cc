#include "frontend/upload.h"

#include <algorithm>
#include <cstring>

#include "base/debug_trace.h"
#include "base/fd.h"

namespace onu {
namespace {

constexpr std::string_view kStoredPrefix = "/var/";
// Where the name's characters go. The second is inside the prefix, which is put over the name in
// the end: a client's path loses the first three characters of its last component.
constexpr std::size_t kNameStart = 5;
constexpr std::size_t kComponentStart = 2;

}  // namespace

bool UploadReader::read(int source, std::uint32_t length) {
  std::array<char, kDelimiterMax + kBlock> buffer;
  std::size_t held = 0;
  bool complete = true;
  while (complete && length > 0) {
    const std::size_t want = std::min<std::size_t>(length, kBlock);
    const std::size_t got = readFully(source, buffer.data() + held, want);
    const std::size_t size = held + got;
    held = scan({buffer.data(), size});
    std::memmove(buffer.data(), buffer.data() + size - held, held);
    length -= static_cast<std::uint32_t>(got);
    complete = got == want;
  }
  write({buffer.data(), held});  // never decided, so it was data
  return complete && !failed_;
}

// Returns how many bytes at the end of `input` can only be judged together with the next block.
std::size_t UploadReader::scan(std::string_view input) {
  std::size_t at = 0;
  while (at < input.size() && state_ < State::kData) {
    takeHeader(input[at++]);
  }
  return state_ == State::kData ? takeData(input.substr(at)) : 0;
}

void UploadReader::takeHeader(char c) {
  switch (state_) {
    case State::kBoundary:
      return takeBoundary(c);
    case State::kField:
      if (completes("filename=", c)) {
        state_ = State::kFileName;
        nameEnd_ = kNameStart;
      }
      return;
    case State::kFileName:
      return takeFileName(c);
    default:
      if (completes("\r\n\r\n", c)) {
        state_ = State::kData;
      }
  }
}

void UploadReader::takeBoundary(char c) {
  if (completes("\r\n", c)) {
    delimiterSize_ = 2 + std::min(boundarySize_ - 1, kBoundaryMax);  // less the carriage return
    state_ = State::kField;
    matched_ = 0;
    return;
  }
  if (boundarySize_ < kBoundaryMax) {
    delimiter_[2 + boundarySize_] = c;
  }
  ++boundarySize_;
}

void UploadReader::takeFileName(char c) {
  if (c == '\r') {
    std::copy(kStoredPrefix.begin(), kStoredPrefix.end(), area_.begin());
    area_[nameEnd_] = '\0';
    debugTrace("upgrade file name : %s", area_.data());
    state_ = State::kHeader;
    matched_ = 1;  // this carriage return may already begin the empty line
  } else if (c == '\\' || c == '/') {
    nameEnd_ = kComponentStart;
  } else if (c != '"' && nameEnd_ < area_.size() - 1) {
    area_[nameEnd_++] = c;
  }
}

// Whether `c` is the last byte of `pattern` after the bytes before it. Every pattern here either
// starts over or has just its first byte matched when a byte does not fit.
bool UploadReader::completes(std::string_view pattern, char c) {
  if (c != pattern[matched_]) {
    matched_ = 0;
  }
  if (c == pattern[matched_]) {
    ++matched_;
  }
  if (matched_ < pattern.size()) {
    return false;
  }
  matched_ = 0;
  return true;
}

std::size_t UploadReader::takeData(std::string_view input) {
  const std::string_view delimiter(delimiter_.data(), delimiterSize_);
  for (std::size_t at = input.find('\r'); at != std::string_view::npos;
       at = input.find('\r', at + 1)) {
    const std::string_view rest = input.substr(at, delimiter.size());
    if (rest != delimiter.substr(0, rest.size())) {
      continue;
    }
    write(input.substr(0, at));
    if (rest.size() < delimiter.size()) {
      return rest.size();
    }
    state_ = State::kDone;
    return 0;
  }
  write(input);
  return 0;
}

void UploadReader::write(std::string_view data) { failed_ = !writeFully(target_, data) || failed_; }

}  // namespace onu
