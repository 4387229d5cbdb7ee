#include "tests/support/commands.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>

namespace onu::test {
namespace {

constexpr const char* kSuffix = "_xml_cfg_file.xml";

constexpr const char* kMain = R"(<m>
<commInfo><model>M</model><softwareVersion>S"1</softwareVersion></commInfo>
<ipInfo><ipAddress>192.168.1.1</ipAddress><netMask>255.255.255.0</netMask>
  <onu_mac>02:10:20:30:40:50</onu_mac></ipInfo>
<account><admin>se&lt;cret</admin><user></user></account>
<vlan><port mode="v0" default_vid="d0" vid_sum="n0" vid_serial="l0">0</port>
  <port mode="v1" default_vid="d1" vid_sum="n1" vid_serial="l1">1</port></vlan>
<onu><fec_mode>fm</fec_mode><fec_ability>fa</fec_ability><sn>sn</sn>
  <loid password="lp">li</loid></onu>
<switch><port phy_admin="p0" flow_control="f0" auto_neg="a0" mode="m0" mode_max="x0">0</port>
  <o></o><port mode="&lt;">1</port></switch>
<mac_aging_time><eth_port time="9">1</eth_port><eth_port time="300">0</eth_port></mac_aging_time>
<storm><port mode="b0" bs_thresh="t0">0</port><port mode="b1">1</port></storm></m>)";

constexpr const char* kTpm = R"(<t><mtu_setting><mtu_setting_enabled>e</mtu_setting_enabled>
<ipv4_mtu_ds>ds</ipv4_mtu_ds><ipv4_mtu_us>us</ipv4_mtu_us>
<ipv4_pppoe_mtu_us>po</ipv4_pppoe_mtu_us></mtu_setting><port_init><tx_module_parameters>
  <tx_mod></tx_mod><tx_mod><queue_map><queue></queue></queue_map></tx_mod>
  <tx_mod><queue_map>TRANSMIT</queue_map></tx_mod><tx_mod></tx_mod></tx_module_parameters>
<gmac_config><gmac_rx_queues><gmac></gmac><gmac><queue></queue></gmac>
  <gmac>RECEIVE</gmac><gmac></gmac></gmac_rx_queues></gmac_config></port_init>
<flow_control><enabled>on</enabled></flow_control></t>)";

constexpr const char* kEoam = R"(<e><ONU_MULTICAST>
<oam_multicast_switch>a&lt;"b</oam_multicast_switch>
<port groupnum="32"></port><port groupnum="33"></port></ONU_MULTICAST><ONU_LOOPDETECT>
<port loopdetect="1">0</port><port loopdetect="2">1</port></ONU_LOOPDETECT></e>)";

constexpr const char* kOmci =
    R"(<o><OMCI_MIB><ctcLOIDAuth loid="gl" password="gp"></ctcLOIDAuth>
<ethPortIsolated a="&quot;" enabled="true"></ethPortIsolated></OMCI_MIB></o>)";

constexpr const char* kGpon = R"(<g><PON><PON_serial_num>ABCD0000</PON_serial_num>
<PON_passwd>pp</PON_passwd><PON_serial_src>1</PON_serial_src></PON></g>)";

// Starts to watch the folders that requests write to: what is written again without a change is
// seen as well.
int startWatch() {
  const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (const char* folder : {"/var/tevo/website/www/xml", "/etc/xml_params",
                             "/sys/devices/platform/tpm/cfg_traffic", "/tmp", "/record"}) {
    EXPECT_GE(::inotify_add_watch(queue, folder, IN_MODIFY | IN_MOVED_TO), 0) << folder;
  }
  return queue;
}

std::string endWatch(int queue) {
  std::string names;
  std::array<char, 65536> buffer;
  const ssize_t size = ::read(queue, buffer.data(), buffer.size());
  ::close(queue);
  for (ssize_t at = 0; at < size;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + at, sizeof event);
    const std::string name = buffer.data() + at + sizeof event;
    // A hidden file is a settings file to be: it counts once it has got its name.
    names += name.front() == '.' ? "" : name.substr(0, name.find(kSuffix)) + " ";
    at += static_cast<ssize_t>(sizeof event + event.len);
  }
  return names;
}

bool replaceAll(std::string& text, const std::string& from, const std::string& to) {
  bool found = false;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
    found = true;
  }
  return found;
}

Commands::Files settings() {
  std::string transmit;
  std::string receive;
  for (const std::string number : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
    transmit +=
        R"(<queue sched_method="m" weight="w)" + number + R"(" size="s)" + number + "\"></queue>";
    receive += R"(<queue size="r)" + number + "\"></queue>";
  }
  std::string tpm = kTpm;
  replaceAll(tpm, "TRANSMIT", transmit);
  replaceAll(tpm, "RECEIVE", receive);
  return {{"tevo", kMain}, {"tpm", tpm}, {"eoam", kEoam}, {"omci", kOmci}, {"gpon", kGpon}};
}

}  // namespace

std::string Commands::path(const std::string& file) {
  return file == "tevo" ? kSettings : "/etc/xml_params/" + file + kSuffix;
}

void Commands::check(const std::vector<Case>& cases, const Files& other) {
  for (const Case& c : cases) {
    const std::string label = c.query.substr(0, 100) + (other.empty() ? "" : other.begin()->second);
    Files want = other;
    want.merge(settings());
    for (const auto& [file, text] : want) {
      writeFile(path(file), text);
      if (text == kAbsent) {
        std::filesystem::remove(path(file));
      }
    }
    writeFile("/tmp/TempFile", "a longer script that another process has left behind" + c.query);
    const int watch = startWatch();
    const Outcome outcome = cgi(get(c.query));
    EXPECT_EQ(endWatch(watch), c.written) << label;
    const bool isBody = !c.reply.empty() && c.reply.find("HTTP/") == std::string::npos;
    EXPECT_EQ(outcome.out, isBody ? json(c.reply) : c.reply) << label;
    EXPECT_EQ(outcome.scripts.empty() ? outcome.commands : outcome.scripts, split(c.runs, '|'))
        << label;
    const Texts changes = split(c.changes, '|');
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
      bool found = false;
      for (auto& [file, text] : want) {
        found = replaceAll(text, changes[i], changes[i + 1]) || found;
      }
      EXPECT_TRUE(found) << label << ": " << changes[i];
    }
    for (const auto& [file, text] : want) {
      EXPECT_EQ(exists(path(file)) ? readFile(path(file)) : kAbsent, text) << label;
    }
  }
}

void Commands::checkWithoutValues(const std::vector<Case>& cases) {
  for (const char* content : {"<x><vlan/><switch/><mac_aging_time/><storm/><flow_control/></x>", "",
                              "no xml", "\xff\xfe<", kAbsent}) {
    Files files;
    for (const auto& [file, text] : settings()) {
      files[file] = content;
    }
    check(cases, files);
  }
}

}  // namespace onu::test
