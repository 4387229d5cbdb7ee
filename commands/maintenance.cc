#include "commands/maintenance.h"

#include <array>
#include <cstdint>
#include <initializer_list>

#include "base/fd.h"
#include "base/message.h"
#include "base/number.h"
#include "base/text.h"
#include "config/paths.h"
#include "device/shell.h"
#include "frontend/upload.h"

namespace onu {
namespace {

constexpr const char* kReboot = "/sbin/reboot";
constexpr auto kTakeArchive = join("mv ", kUploadPath, " /tmp/xml_in.tar");
constexpr auto kTakeMainSettings =
    join("cp -f /tmp/xml_config/tevo_xml_cfg_file.xml  ", kMainSettingsPath);
constexpr auto kRestoreMainSettings =
    join("/bin/cp -f ", kFactorySettingsPath, "  ", kMainSettingsPath);
constexpr auto kTakeFiles = join("mv ", kUploadPath, "  /tmp/jffs2_fs.tar.gz");

void run(std::initializer_list<const char*> commands) {
  for (const char* const command : commands) {
    runShell({command});
  }
}

// Points standard output at /dev/null, so that no tool prints into a reply.
void muteTools() {
  const Fd null = Fd::open("/dev/null", O_WRONLY);
  if (null) {
    ::dup2(null.get(), STDOUT_FILENO);
  }
}

// Sends the whole reply and lets go of it, which completes the page: the caller may start what ends
// with the unit going down. A client that has gone away must not stop that.
void replyBeforeWork(const ResponseWriter& reply) {
  {
    const BrokenPipeGuard guard;
    reply.sendJsonResponse("0");
  }
  muteTools();
}

// The other order: the reply stands untouched behind the output of the tools.
void replyAfterWork(const ResponseWriter& reply, std::initializer_list<const char*> commands) {
  const Fd output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (output) {
    muteTools();
  }
  run(commands);
  if (output) {
    ::dup2(output.get(), STDOUT_FILENO);
  }
  reply.sendJsonResponse(" 0");
}

// An image that is copied over a flash partition as a whole.
struct Image {
  const char* file;
  const char* partition;
};
constexpr std::array kImages = {
    Image{"/tmp/uImage", "/dev/mtd1"},
    Image{"/tmp/rootfs.squashfs", "/dev/mtd2"},
    Image{"/tmp/varfs.jffs2", "/dev/mtd3"},
};

void flash(const Image& image) {
  runShell({"mv ", kUploadPath, "  ", image.file});
  runShell({"/usr/sbin/flash_unlock ", image.partition, " "});
  runShell({"/usr/sbin/flash_erase ", image.partition, " 0 0 "});
  runShell({"/bin/dd if=", image.file, " of=", image.partition});
  runShell({kReboot});
}

// The archive holds files of the writable file system. The script unpacks it and decides what comes
// then.
void upgradeFiles() {
  run({"rm -rf /tmp/jffs2_fs.tar.gz", "rm -r /tmp/jffs2_fs.tar.gz", kTakeFiles.data(),
       "cp /tmp/jffs2_fs.tar.gz  /var/", "/var/tevo/upgrade.sh"});
}

}  // namespace

void exportConfiguration(WebRequest& request) {
  replyAfterWork(request.reply, {"/var/tevo/export_xml.sh"});
}

void importConfiguration(WebRequest& request) {
  replyAfterWork(
      request.reply,
      {kTakeArchive.data(), "tar -xf /tmp/xml_in.tar -C /tmp/ ", kTakeMainSettings.data(),
       "cp -rf /tmp/xml_config/*.*  /etc/xml_params/",
       // The main settings have their place with the pages; no second copy is to stay behind.
       "rm -rf /etc/xml_params/tevo*.*", "rm -rf /tmp/xml_config", "rm -f /tmp/xml_in.tar"});
}

void rebootUnit(WebRequest& request) {
  replyBeforeWork(request.reply);
  runShell({kReboot});
}

void restoreDefaults(WebRequest& request) {
  replyBeforeWork(request.reply);
  run({"/bin/cp -f /var/tevo/xml_default/*.*  /etc/xml_params/",
       // Not the folder just copied to: the main settings leave a second copy there.
       "rm -f /var/xml_params/tevo_xml_cfg_file.xml", kRestoreMainSettings.data(), kReboot});
}

void upgradeFirmware(WebRequest& request) {
  // 0 is the archive, 1 to 3 the images; a missing type is 0, a negative one beyond them all.
  const auto type = static_cast<std::uint32_t>(toNumber(getParam(request.query, "update_type")));
  if (type > kImages.size()) {
    return request.reply.sendJsonResponse("1");
  }
  replyBeforeWork(request.reply);
  if (type == 0) {
    upgradeFiles();
  } else {
    flash(kImages[type - 1]);
  }
}

}  // namespace onu
