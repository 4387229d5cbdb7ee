#include "frontend/upload.h"

#include <filesystem>

#include "base/fd.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

const std::string kBoundary = "----WebKitFormBoundaryA1";
const std::string kEnd = "\r\n--" + kBoundary + "--\r\n";

std::string part(const std::string& boundary, const std::string& name, const std::string& data) {
  return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"f\"; filename=\"" + name +
         "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + data;
}

std::string multipart(const std::string& data) { return part(kBoundary, "image.bin", data) + kEnd; }

// Every byte value, and line ends of every kind.
std::string binary(std::size_t size) {
  std::string data;
  for (std::size_t i = 0; data.size() < size; ++i) {
    data.push_back(static_cast<char>(i * 7 + i / 256));
    data.append(i % 97 == 0 ? "\r\n" : i % 89 == 0 ? "\r\r\n--" : "");
  }
  data.resize(size);
  return data;
}

// Sends `body` to a number without a command, so that the reply shows whether it was dispatched,
// through a pipe: it arrives in pieces.
void expectStored(const std::string& body, const std::string& want) {
  const std::string line = std::string("dd bs=777 2>/dev/null | ") + Unit::kCgi;
  EXPECT_EQ(Unit::run(line, upload("cmd_id=7", body)).out, errorPage(404, "processor is not find"));
  EXPECT_TRUE(readFile(Unit::kUpload) == want)
      << "of a body of " << body.size() << ": " << body.substr(0, 300);
}

TEST_F(Unit, UploadsAreStoredUnchanged) {
  const std::string line(180, 'b');
  const std::string half = "x\r\n--" + line.substr(90);
  const std::string field =
      "--" + kBoundary + "\r\nContent-Disposition: form-data; name=\"x\"\r\n\r\nvalue\r\n";
  for (const std::string& data : {std::string("\r\n\r\n\r\r\r\n"), binary(100000),
                                  std::string("\r\n----WebKitFormBoundaryA2\r\n--\r"),
                                  binary(0x1000000 - multipart("").size())}) {
    expectStored(multipart(data), data);
  }
  expectStored(field + multipart(""), "");
  expectStored(field + kEnd, "");
  expectStored(part(kBoundary, "a", "one\r\n") + multipart("two"), "one");
  expectStored("--b\r\nfilename=\"f\"\r\n\r\nX\r\n--b--", "X");
  expectStored(part(kBoundary, "a", "data\r\n----Web"), "data\r\n----Web");
  expectStored(part(line, "a", half) + "\r\n--" + line + "--\r\n", half);
  expectStored(std::string(5000, '-'), "");
  expectStored(part(kBoundary, std::string(3000, 'n'), "data") + kEnd, "data");
  expectStored("--b\r\nfilename=\"f\"\r\nX\n\r\n\r\r\n\r\ndata\r\n--b--", "data");

  // The end of the data, or what looks like it, at every place around the end of a block.
  const std::size_t head = part(kBoundary, "image.bin", "").size();
  const std::string almost = "\r\n--" + kBoundary;
  constexpr std::size_t kBlock = 0x8000;  // as much as is read at once
  for (std::size_t start = kBlock - almost.size() - 2; start <= kBlock + 1; ++start) {
    const std::string data = binary(start - head);
    expectStored(multipart(data), data);
    const std::string like = data + almost.substr(0, almost.size() - 1) + "?" + binary(kBlock);
    expectStored(multipart(like), like);
    expectStored(part(kBoundary, std::string(start - head + 12, 'n'), "data") + kEnd, "data");
  }
}

TEST_F(Unit, UploadsFailWithoutDispatch) {
  const std::string body = multipart("data");
  const std::string failed =
      errorPage(400, "receive file fail") + "onu-cgi: command 8: receive file fail: ";
  std::vector<Request> requests = {
      upload("cmd_id=8", multipart(binary(0x1000001 - multipart("").size()))),
      upload("cmd_id=8", body)};
  requests[1].environment.erase("REQUEST_METHOD");
  for (const char* length : {"0", "16777217", "-1", "many", "10000"}) {
    requests.push_back(upload("cmd_id=8", body, length));
  }
  for (const Request& request : requests) {
    writeFile(kUpload, "stale");
    const Outcome outcome = cgi(request);
    EXPECT_EQ(outcome.out + outcome.err,
              failed + "the upload is empty, over 16 MiB or shorter than announced\n");
    EXPECT_FALSE(exists(kUpload)) << request.environment.at("CONTENT_LENGTH");
  }
  std::filesystem::create_symlink("/dev/full", "/tmp/.recFile");
  const Outcome full = cgi(upload("cmd_id=8", body));
  EXPECT_EQ(full.out + full.err, failed + "No space left on device\n");
}

TEST_F(Unit, UploadsStoreANameThatOverlapsItsPrefix) {
  for (const auto& [name, want] : std::map<std::string, std::string>{
           {"image.bin", "/var/image.bin"},
           {R"(C:\up\image.bin)", "/var/ge.bin"},
           {"/a/image.bin", "/var/ge.bin"},
           {"ima\"ge\".bin", "/var/image.bin"},
           {std::string(400, 'n'), "/var/" + std::string(250, 'n')},
       }) {
    writeFile("/tmp/body", part(kBoundary, name, ""));
    UploadReader::NameArea area;
    area.fill('#');
    const Fd file = Fd::open("/tmp/body", O_RDWR);
    EXPECT_FALSE(UploadReader(file.get(), area).read(file.get(), 1000)) << "not so much";
    EXPECT_STREQ(area.data(), want.c_str());
  }
}

}  // namespace
}  // namespace onu::test
