// Input: by how much the announced length differs from the body's (one signed byte), the body,
// where byte 1 and the count after it stand for eight times as many filler bytes: a small input
// reaches across several blocks, and the end of the data can come to lie anywhere in one.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "base/fd.h"
#include "frontend/upload.h"
#include "fuzz/check.h"

namespace {

constexpr char kFiller = 1;
constexpr std::size_t kFillerUnit = 8;
constexpr std::size_t kNameSize = 255;  // without the terminating zero

std::string expand(std::string_view input) {
  std::string body;
  for (std::size_t at = 0; at < input.size(); ++at) {
    if (input[at] == kFiller && at + 1 < input.size()) {
      body.append(static_cast<unsigned char>(input[++at]) * kFillerUnit, 'x');
    } else {
      body.push_back(input[at]);
    }
  }
  return body;
}

struct Upload {
  bool named = false;
  std::string name;  // up to its first zero byte
  std::string data;
};

std::string naiveName(std::string_view text) {
  constexpr std::string_view kPrefix = "/var/";
  std::string name(kPrefix);
  for (const char c : text) {
    if (c == '/' || c == '\\') {
      name.resize(2);
    } else if (c != '"' && name.size() < kNameSize) {
      name.push_back(c);
    }
  }
  std::copy_n(kPrefix.begin(), std::min(kPrefix.size(), name.size()), name.begin());
  return name.substr(0, name.find('\0'));
}

// The rules of UploadReader on a body that is there as a whole.
Upload naiveUpload(std::string_view body) {
  constexpr std::string_view kNameMark = "filename=";
  constexpr std::size_t kNone = std::string_view::npos;
  Upload upload;
  const std::size_t line = body.find("\r\n");
  const std::size_t mark = line == kNone ? kNone : body.find(kNameMark, line + 2);
  const std::size_t nameEnd = mark == kNone ? kNone : body.find('\r', mark + kNameMark.size());
  if (nameEnd == kNone) {
    return upload;
  }
  const std::size_t name = mark + kNameMark.size();
  upload.named = true;
  upload.name = naiveName(body.substr(name, nameEnd - name));
  const std::size_t headerEnd = body.find("\r\n\r\n", nameEnd);
  if (headerEnd != kNone) {
    const std::string delimiter = "\r\n" + std::string(body.substr(0, std::min(line, {100})));
    const std::size_t data = headerEnd + 4;
    upload.data = body.substr(data, std::min(body.find(delimiter, data), body.size()) - data);
  }
  return upload;
}

// A file in memory, made once and filled anew for every input.
class MemoryFile {
 public:
  MemoryFile() : file_(::memfd_create("upload", MFD_CLOEXEC)) {}

  int get() const { return file_.get(); }

  void set(std::string_view content) const {
    REQUIRE(::ftruncate(get(), 0) == 0 && ::lseek(get(), 0, SEEK_SET) == 0);
    REQUIRE(onu::writeFully(get(), content) && ::lseek(get(), 0, SEEK_SET) == 0);
  }

  std::string content() const {
    std::string text(static_cast<std::size_t>(std::max<off_t>(0, ::lseek(get(), 0, SEEK_END))), 0);
    ::lseek(get(), 0, SEEK_SET);
    text.resize(onu::readFully(get(), text.data(), text.size()));
    return text;
  }

 private:
  onu::Fd file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MemoryFile source;
  static const MemoryFile target;
  if (size == 0) {
    return 0;
  }
  const std::string body = expand(onu::fuzz::asText(data + 1, size - 1));
  const auto difference = static_cast<std::int8_t>(data[0]);
  const std::int64_t announced = static_cast<std::int64_t>(body.size()) + difference;
  const auto length = static_cast<std::uint32_t>(std::max<std::int64_t>(announced, 0));
  source.set(body);
  target.set("");

  onu::UploadReader::NameArea area{};
  onu::UploadReader reader(target.get(), area);
  const bool complete = reader.read(source.get(), length);

  const std::size_t taken = std::min<std::size_t>(length, body.size());
  const Upload want = naiveUpload(std::string_view(body).substr(0, taken));
  REQUIRE(complete == (length <= body.size()));
  REQUIRE(::lseek(source.get(), 0, SEEK_CUR) == static_cast<off_t>(taken));
  REQUIRE(target.content() == want.data);
  REQUIRE(!want.named || area.data() == want.name);
  return 0;
}
