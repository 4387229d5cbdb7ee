#include "frontend/upload.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include "frontend/fd.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kBoundary = "----WebKitFormBoundaryA1";

std::string part(const std::string& boundary, const std::string& name, const std::string& data) {
  return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"f\"; filename=\"" + name +
         "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + data;
}

std::string multipart(const std::string& data) {
  return part(kBoundary, "image.bin", data) + "\r\n--" + kBoundary + "--\r\n";
}

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

class Uploads : public Unit {
 protected:
  // Sends `body` to a number without a command, so that the reply shows whether it was dispatched.
  static void expectStored(const std::string& body, const std::string& want,
                           const std::string& label) {
    EXPECT_EQ(cgi(upload("cmd_id=7", body)).out, errorPage(404, "processor is not find")) << label;
    EXPECT_TRUE(readFile(kUpload) == want)
        << label << ": " << readFile(kUpload).size() << " bytes instead of " << want.size();
  }
};

TEST_F(Uploads, StoreTheDataUnchanged) {
  const std::string line(90, 'b');
  const std::string field = std::string("--") + kBoundary +
                            "\r\nContent-Disposition: form-data; name=\"x\"\r\n\r\nvalue\r\n";
  const std::string end = std::string("\r\n--") + kBoundary + "--\r\n";
  struct Case {
    const char* label;
    std::string body;
    std::string want;
  };
  for (const Case& c : {
           Case{"empty file", multipart(""), ""},
           {"line ends", multipart("\r\n\r\n\r\r\r\n"), "\r\n\r\n\r\r\r\n"},
           {"almost the boundary", multipart("\r\n----WebKitFormBoundaryA2\r\n--\r"),
            "\r\n----WebKitFormBoundaryA2\r\n--\r"},
           {"binary", multipart(binary(100000)), binary(100000)},
           {"after another field", field + multipart("data"), "data"},
           {"second file is left out", part(kBoundary, "a", "one\r\n") + multipart("two"), "one"},
           {"no further lines", "--b\r\nfilename=\"f\"\r\n\r\nX\r\n--b--", "X"},
           {"no end", part(kBoundary, "a", "data\r\n----Web"), "data\r\n----Web"},
           {"no file", field + end, ""},
           {"boundary of 200 bytes",
            part(line + line, "a", "x\r\n--" + line) + "\r\n--" + line + line + "--\r\n",
            "x\r\n--" + line},
           {"boundary line that never ends", std::string(5000, '-'), ""},
           {"name of 3000 bytes", part(kBoundary, std::string(3000, 'n'), "data") + end, "data"},
       }) {
    expectStored(c.body, c.want, c.label);
  }
}

// The end of the data, or what looks like it, at every place around the end of a block.
TEST_F(Uploads, FindTheBoundaryAcrossBlocks) {
  const std::size_t head = part(kBoundary, "image.bin", "").size();
  const std::string almost = std::string("\r\n--") + kBoundary;
  constexpr std::size_t kBlock = 0x8000;  // as much as is read at once
  for (std::size_t start = kBlock - almost.size() - 2; start <= kBlock + 1; ++start) {
    std::string data = binary(start - head);
    expectStored(multipart(data), data, "boundary at " + std::to_string(start));
    data.append(almost.substr(0, almost.size() - 1)).append("?");
    expectStored(multipart(data), data, "no boundary at " + std::to_string(start));
  }
}

TEST_F(Uploads, FailWithoutDispatch) {
  const std::string body = multipart("data");
  std::vector<Request> requests = {upload("cmd_id=8", "", "0"), upload("cmd_id=8", body)};
  requests.back().environment.erase("REQUEST_METHOD");
  for (const std::string& length : {std::string("16777217"), std::string("-1"), std::string("many"),
                                    std::to_string(body.size() + 1)}) {
    requests.push_back(upload("cmd_id=8", body, length));
  }
  for (Request& request : requests) {
    writeFile(kUpload, "stale");
    EXPECT_EQ(cgi(request).out, errorPage(400, "receive file fail"))
        << request.environment["CONTENT_LENGTH"];
    EXPECT_FALSE(exists(kUpload)) << request.environment["CONTENT_LENGTH"];
  }
}

TEST_F(Uploads, TakeTheLargestSize) {
  const std::string data = binary(0x1000000 - multipart("").size());
  expectStored(multipart(data), data, "16 MiB");
}

TEST(Upload, StoredNameOverlapsItsPrefix) {
  const std::string longName(400, 'n');
  for (const auto& [name, want] : std::map<std::string, std::string>{
           {"image.bin", "/var/image.bin"},
           {R"(C:\up\image.bin)", "/var/ge.bin"},
           {"/a/image.bin", "/var/ge.bin"},
           {"ima\"ge\".bin", "/var/image.bin"},
           {longName, "/var/" + longName.substr(0, 250)},
       }) {
    const std::string body = part(kBoundary, name, "data");
    writeFile("/tmp/body", body);
    const Fd source = Fd::open("/tmp/body", O_RDONLY);
    const Fd target = Fd::open("/dev/null", O_WRONLY);
    UploadReader::NameArea area;
    area.fill('#');
    UploadReader reader(target.get(), area);
    EXPECT_TRUE(reader.read(source.get(), static_cast<std::uint32_t>(body.size()))) << name;
    EXPECT_EQ(std::string(area.data()), want);
  }
}

}  // namespace
}  // namespace onu::test
