// What a command leaves of a settings file that is hard to write.

#include <filesystem>
#include <fstream>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

class Saves : public Unit {
 protected:
  void SetUp() override {
    Unit::SetUp();
    reply("cmd_id=30&action=1&bs=7");  // from here on they are as the tree writes them
    before_ = readFile(kSettings);
  }

  // Changes the password, whether that can be stored or not; the reply does not tell.
  void expectKept(const std::string& error, const std::string& password = "new") {
    const Outcome outcome = cgi(get("cmd_id=20&pwdold=user&pwdnew=" + password));
    EXPECT_EQ(outcome.out, json("0"));
    EXPECT_EQ(readFile(kSettings), before_) << password;
    EXPECT_EQ(outcome.err, error.empty() ? "" : "onu-cgi: command 20: cannot save " + error);
  }
  void expectChanged() {
    before_.replace(before_.find("<user>user<"), 11, "<user>new<");
    expectKept("");
  }

  static std::ptrdiff_t filesIn(const char* folder) {
    return std::distance(fs::directory_iterator(folder), {});
  }

  std::string before_;
};

TEST_F(Saves, ReplaceTheFileThatALinkNames) {
  fs::create_directory("/etc/elsewhere");
  fs::permissions(kSettings, fs::perms(01662));
  fs::create_hard_link(kSettings, "/etc/old");
  fs::rename(kSettings, "/etc/elsewhere/settings");
  fs::create_symlink("/etc/elsewhere/settings", std::string(kSettings) + ".link");
  fs::create_symlink(fs::path(kSettings).filename().string() + ".link", kSettings);
  writeFile("/etc/elsewhere/.onu-save", std::string(9999, 'x'));  // left by a killed writer
  const std::string old = before_;
  expectChanged();
  EXPECT_TRUE(fs::is_symlink(kSettings));
  EXPECT_EQ(fs::status(kSettings).permissions(), fs::perms(01662)) << "umask or not";
  EXPECT_EQ(readFile("/etc/old"), old) << "not written over the old one";
  EXPECT_EQ(filesIn("/etc/elsewhere"), 1);
}

TEST_F(Saves, KeepWhatCannotBeWritten) {
  fs::permissions(kSettings, fs::perms::owner_read);
  expectKept(std::string(kSettings) + ": Permission denied\n");
  fs::permissions(kSettings, fs::perms::owner_all);
  const fs::path folder = fs::path(kSettings).parent_path();
  fs::permissions(folder, fs::perms(0555));
  expectChanged();  // without a new file beside it
  fs::permissions(folder, fs::perms(0755));
}

TEST_F(Saves, KeepTheOldTextOnAFullDisk) {
  before_.insert(before_.size() - 7, std::string(8192 - before_.size(), ' '));
  fs::remove(kSettings);
  fs::create_symlink("/small/settings", kSettings);
  writeFile("/small/settings", before_);
  std::ofstream("/small/filler") << std::string(70000, 'x');  // as much as fits
  for (const std::size_t size : {1U, 4U, 4096U}) {
    expectKept("/small/settings: No space left on device\n", std::string(size, 'p'));
    EXPECT_EQ(filesIn("/small"), 2);
  }
  fs::remove("/small/filler");
  expectChanged();
}

TEST_F(Saves, DoWithoutTheLock) {
  const std::string line = "no lock on /tmp, others may be at work: Permission denied\n";
  fs::create_hard_link(kSettings, "/etc/old");
  fs::permissions("/tmp", fs::perms::none);
  const Outcome outcome = cgi(get("cmd_id=30&action=1&bs=8"));
  const Outcome refused = cgi(upload("cmd_id=8", "--x\r\nfilename=\"f\"\r\n\r\nX\r\n--x--"));
  fs::permissions("/tmp", fs::perms::all);
  EXPECT_EQ(outcome.out + outcome.err, json("0") + "onu-cgi: command 30: " + line);
  EXPECT_NE(readFile(kSettings).find("<port mode=\"8\""), std::string::npos);
  EXPECT_EQ(readFile("/etc/old"), before_) << "not written over the old one";
  EXPECT_EQ(filesIn("/var/tevo/website/www/xml"), 1);
  EXPECT_EQ(refused.out, errorPage(400, "receive file fail")) << "it would share its file";
  EXPECT_EQ(refused.err, "onu-cgi: command 8: " + line +
                             "onu-cgi: command 8: receive file fail: "
                             "no upload is received beside another request\n");
}

// A file cut anywhere is read as far as it goes, and never written back as less than a document.
TEST_F(Saves, MakeADocumentOfATruncatedFile) {
  const std::string path = kSettings;
  int rewritten = 0;
  for (std::size_t size = 0; size < before_.size(); size += 37) {
    writeFile(path, before_.substr(0, size));
    const std::string error = cgi(get("cmd_id=20&pwdold=user&pwdnew=n")).err;
    const std::string after = readFile(path);
    const bool isKept = after == before_.substr(0, size);
    rewritten += isKept ? 0 : 1;
    EXPECT_TRUE(isKept || after.rfind("</tevo>") == after.size() - 7) << size;
    EXPECT_EQ(error.find("onu-cgi: command 20: error in " + path + ": [error near line "), 0U);
    EXPECT_EQ(error.find("is rewritten") == std::string::npos, isKept) << error;
  }
  EXPECT_GT(rewritten, 10);
  fs::remove(path);
  EXPECT_EQ(cgi(get("cmd_id=6")).err,
            "onu-cgi: command 6: cannot read " + path + ": No such file or directory\n");
}

}  // namespace
}  // namespace onu::test
