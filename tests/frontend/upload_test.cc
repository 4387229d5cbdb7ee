#include "frontend/upload.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

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
  static void expectRefused(const Request& request, const std::string& label) {
    writeFile(kUpload, "stale");
    EXPECT_EQ(cgi(request).out, errorPage(400, "receive file fail")) << label;
    EXPECT_FALSE(exists(kUpload)) << label;
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
  const std::vector<Case> cases = {
      {"empty file", multipart(""), ""},
      {"line ends", multipart("\r\n\r\n\r\r\r\n"), "\r\n\r\n\r\r\r\n"},
      {"almost the boundary", multipart("\r\n----WebKitFormBoundaryA2\r\n--\r"),
       "\r\n----WebKitFormBoundaryA2\r\n--\r"},
      {"binary", multipart(binary(100000)), binary(100000)},
      {"after another field", field + multipart("data"), "data"},
      {"second file is left out", part(kBoundary, "a", "one\r\n") + multipart("two"), "one"},
      {"header without further lines", std::string("--b\r\nfilename=\"f\"\r\n\r\nX\r\n--b--"), "X"},
      {"no end", part(kBoundary, "a", "data\r\n----Web"), "data\r\n----Web"},
      {"no file", field + end, ""},
      {"boundary of 200 bytes",
       part(line + line, "a", "x\r\n--" + line) + "\r\n--" + line + line + "--\r\n",
       "x\r\n--" + line},
      {"boundary line that never ends", std::string(5000, '-'), ""},
      {"name of 3000 bytes", part(kBoundary, std::string(3000, 'n'), "data") + end, "data"},
  };
  for (const Case& c : cases) {
    expectStored(c.body, c.want, c.label);
  }
}

// The end of the data, or what looks like it, at every place around the end of a block.
TEST_F(Uploads, FindTheBoundaryAcrossBlocks) {
  const std::size_t head = part(kBoundary, "image.bin", "").size();
  const std::string almost = std::string("\r\n--") + kBoundary;
  for (std::size_t start = 1024 - almost.size() - 2; start <= 1025; ++start) {
    std::string data = binary(start - head);
    expectStored(multipart(data), data, "boundary at " + std::to_string(start));
    data.append(almost.substr(0, almost.size() - 1)).append("?");
    expectStored(multipart(data), data, "no boundary at " + std::to_string(start));
  }
}

TEST_F(Uploads, FailWithoutDispatch) {
  const std::string body = multipart("data");
  expectRefused(upload("cmd_id=8", "", "0"), "empty");
  expectRefused(upload("cmd_id=8", body, "16777217"), "too large");
  expectRefused(upload("cmd_id=8", body, "-1"), "negative");
  expectRefused(upload("cmd_id=8", body, "many"), "no number");
  expectRefused(upload("cmd_id=8", body, std::to_string(body.size() + 1)),
                "shorter than announced");
  Request noMethod = upload("cmd_id=8", body);
  noMethod.environment.erase("REQUEST_METHOD");
  expectRefused(noMethod, "no method");
}

TEST_F(Uploads, TakeTheLargestSize) {
  const std::size_t frame = multipart("").size();
  const std::string data = binary(0x1000000 - frame);
  expectStored(multipart(data), data, "16 MiB");
}

TEST(Upload, StoredNameOverlapsItsPrefix) {
  struct NameCase {
    const char* label;
    std::string name;
    std::string want;
  };
  const std::vector<NameCase> cases = {
      {"plain", "image.bin", "/var/image.bin"},
      {"windows path", R"(C:\up\image.bin)", "/var/ge.bin"},
      {"unix path", "/a/image.bin", "/var/ge.bin"},
      {"quotes", "ima\"ge\".bin", "/var/image.bin"},
      {"longer than the area", std::string(400, 'n'), "/var/" + std::string(250, 'n')},
  };
  for (const NameCase& c : cases) {
    const std::string body = part(kBoundary, c.name, "data");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Fd source(ends[0]);
    {
      const Fd sink(ends[1]);
      ASSERT_TRUE(writeFully(sink.get(), body));
    }
    const Fd target = Fd::open("/dev/null", O_WRONLY);
    UploadReader::NameArea area;
    area.fill('#');
    UploadReader reader(target.get(), area);
    EXPECT_TRUE(reader.read(source.get(), static_cast<std::uint32_t>(body.size()))) << c.label;
    EXPECT_EQ(std::string(area.data()), c.want) << c.label;
  }
}

}  // namespace
}  // namespace onu::test
