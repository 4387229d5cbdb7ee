#include "frontend/cgi_log.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/unit.h"

namespace onu {
namespace {

constexpr const char* kLog = "/var/cgi.log";
constexpr std::size_t kStamp = 21;

// One test, since the log keeps its file open for the life of the process.
TEST(CgiLog, KeepsTheNewestTwoMebibytes) {
  test::Unit::reset();
  CgiLog& log = CgiLog::getInstance();
  log.writeLine("");
  EXPECT_EQ(test::readFile(kLog), "");

  log.writeLine("abc");
  const std::string line = test::readFile(kLog);
  std::tm time{};
  EXPECT_STREQ(::strptime(line.c_str(), "[%Y-%m-%d %H:%M:%S]", &time), "abc\n") << line;
  EXPECT_EQ(line.size(), kStamp + 4);

  // Zero bytes must survive the trimming as well.
  const std::string old = std::string("0123456789") + std::string(2097140 - 10, '\0');
  test::writeFile(kLog, old);
  log.writeLine("0123456789");
  const std::string kept = test::readFile(kLog);
  ASSERT_EQ(kept.size(), 2097153U);
  EXPECT_EQ(kept.substr(0, old.size() - 19), old.substr(19));
  EXPECT_EQ(kept.substr(old.size() - 19 + kStamp), "0123456789\n");

  test::writeFile(kLog, std::string(2097152 - kStamp, 'x'));  // one byte too many
  log.writeLine("y");
  EXPECT_EQ(test::readFile(kLog).size(), 2097153U);
}

TEST(CgiLog, StampsLocalTime) {
  ::setenv("TZ", "XXX-5", 1);
  char stamp[CgiLog::kStampSize];
  const std::time_t before = std::time(nullptr);
  CgiLog::formatTimeStamp(stamp);
  const std::time_t after = std::time(nullptr);
  ::unsetenv("TZ");
  std::tm fields{};
  ASSERT_NE(::strptime(stamp, "[%Y-%m-%d %H:%M:%S]", &fields), nullptr) << stamp;
  const std::time_t utc = ::timegm(&fields) - 5 * 3600;
  EXPECT_GE(utc, before);
  EXPECT_LE(utc, after);
  CgiLog::formatTimeStamp(nullptr);
}

}  // namespace
}  // namespace onu
