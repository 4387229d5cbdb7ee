// What a command leaves of a settings file that is hard to write.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

const std::string kSet = "cmd_id=20&pwdold=user&pwdnew=";

// The settings with another password.
std::string with(std::string settings, const std::string& password) {
  return settings.replace(settings.find("<user>user<"), 11, "<user>" + password + "<");
}

// The settings as the tree writes them, of exactly `size` bytes where that is given.
std::string start(std::size_t size = 0) {
  Unit::reply("cmd_id=30&action=1&bs=7");
  std::string text = readFile(Unit::kSettings);
  text.insert(text.size() - 7, std::string(size == 0 ? 0 : size - text.size(), ' '));
  writeFile(Unit::kSettings, text);
  return text;
}

std::ptrdiff_t filesIn(const char* folder) {
  return std::distance(fs::directory_iterator(folder), {});
}

using Saves = Unit;

TEST_F(Saves, ReplaceTheFileThatALinkNames) {
  const std::string before = start();
  fs::create_directory("/etc/elsewhere");
  fs::rename(kSettings, "/etc/elsewhere/settings");
  fs::permissions("/etc/elsewhere/settings", fs::perms(0640));
  fs::create_symlink("/etc/elsewhere/settings", kSettings);
  const int watched = ::open(kSettings, O_RDONLY);
  EXPECT_EQ(reply(kSet + "new"), json("0"));
  EXPECT_TRUE(fs::is_symlink(kSettings));
  EXPECT_EQ(readFile("/etc/elsewhere/settings"), with(before, "new"));
  EXPECT_EQ(fs::status(kSettings).permissions(), fs::perms(0640));
  EXPECT_EQ(readFile("/proc/self/fd/" + std::to_string(watched)), before) << "not beside it";
  ::close(watched);
  EXPECT_EQ(filesIn("/etc/elsewhere"), 1);
}

TEST_F(Saves, KeepWhatCannotBeWritten) {
  const std::string before = start();
  fs::permissions(kSettings, fs::perms::owner_read);
  const std::string where = std::string(kSettings) + ": ";
  const Outcome outcome = cgi(get(kSet + "new"));
  EXPECT_EQ(outcome.out, json("0"));
  EXPECT_EQ(outcome.err, "onu-cgi: command 20: cannot save " + where + "Permission denied\n");
  EXPECT_EQ(readFile(kSettings), before);
  fs::permissions(kSettings, fs::perms::owner_all);

  fs::permissions(fs::path(kSettings).parent_path(), fs::perms(0555));
  EXPECT_EQ(reply(kSet + "new"), json("0"));
  EXPECT_EQ(readFile(kSettings), with(before, "new")) << "without a new file beside it";
  fs::permissions(fs::path(kSettings).parent_path(), fs::perms(0755));

  fs::remove(kSettings);
  EXPECT_EQ(cgi(get(kSet + "new")).err,
            "onu-cgi: command 20: cannot read " + where + "No such file or directory\n");
}

TEST_F(Saves, KeepTheOldTextOnAFullDisk) {
  const std::string before = start(8192);
  fs::remove(kSettings);
  fs::create_symlink("/small/settings", kSettings);
  writeFile("/small/settings", before);
  std::ofstream("/small/filler") << std::string(70000, 'x');  // as much as fits
  for (const std::size_t size : {1, 4, 4096}) {
    EXPECT_EQ(reply(kSet + std::string(size, 'p')), json("0"));
    EXPECT_EQ(readFile(kSettings), before) << size;
    EXPECT_EQ(filesIn("/small"), 2);
  }
  fs::remove("/small/filler");
  EXPECT_EQ(reply(kSet + "pppp"), json("0"));
  EXPECT_EQ(readFile(kSettings), with(before, "pppp"));
}

// A file cut anywhere is read as far as it goes, and never written back as less than a document.
TEST_F(Saves, MakeADocumentOfATruncatedFile) {
  const std::string whole = readFile(kSettings);
  int rewritten = 0;
  for (std::size_t size = 0; size < whole.size(); size += 37) {
    const std::string cut = whole.substr(0, size);
    writeFile(kSettings, cut);
    const Outcome outcome = cgi(get("cmd_id=30&action=1&bs=7"));
    EXPECT_EQ(outcome.status, 0) << size;
    EXPECT_EQ(outcome.err.find("onu-cgi: command 30: error in " + std::string(kSettings)), 0U);
    const std::string after = readFile(kSettings);
    EXPECT_TRUE(after == cut || after.rfind("</tevo>") == after.size() - 7) << size;
    EXPECT_EQ(outcome.err.find("is rewritten") == std::string::npos, after == cut) << outcome.err;
    rewritten += after == cut ? 0 : 1;
  }
  EXPECT_GT(rewritten, 10);
}

}  // namespace
}  // namespace onu::test
