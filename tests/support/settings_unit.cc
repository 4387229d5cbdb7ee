#include "tests/support/settings_unit.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>

namespace onu::test {
namespace {

constexpr const char* kComment = "<!-- lost when the file is written -->";

// Starts to watch the folders that requests write to.
int startWatch() {
  const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (const char* folder : {"/var/tevo/website/www/xml", "/etc/xml_params",
                             "/sys/devices/platform/tpm/cfg_traffic", "/tmp", "/record"}) {
    EXPECT_GE(::inotify_add_watch(queue, folder, IN_CLOSE_WRITE), 0) << folder;
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
    names += name.substr(0, name.find("_xml_cfg_file.xml")) + " ";
    at += static_cast<ssize_t>(sizeof event + event.len);
  }
  return names;
}

void replaceAll(std::string& text, const SettingsCase::Change& change, int& count) {
  for (std::size_t at = 0; (at = text.find(change.from, at)) != std::string::npos; ++count) {
    text.replace(at, change.from.size(), change.to);
    at += change.to.size();
  }
}

}  // namespace

std::string SettingsUnit::mainSettings() {
  return "<m><ipInfo><ipAddress>192.168.1.1</ipAddress><netMask>255.255.255.0</netMask></ipInfo>"
         "<vlan><port mode=\"v0\" default_vid=\"d0\" vid_sum=\"n0\" vid_serial=\"l0\">0</port>"
         "<port mode=\"v1\" default_vid=\"d1\" vid_sum=\"n1\" vid_serial=\"l1\">1</port></vlan>"
         "<switch><port phy_admin=\"p0\" flow_control=\"f0\" auto_neg=\"a0\" mode=\"m0\" "
         "mode_max=\"x0\">0</port><o></o><port mode=\"&lt;\">1</port></switch><mac_aging_time>"
         "<eth_port time=\"9\">1</eth_port><eth_port time=\"300\">0</eth_port></mac_aging_time>"
         "<storm><port mode=\"b0\" bs_thresh=\"t0\">0</port><port mode=\"b1\">1</port></storm></m>";
}

std::string SettingsUnit::tpmSettings() {
  const std::string module = "<tx_mod><queue_map><queue></queue></queue_map></tx_mod>";
  const std::string mac = "<gmac><queue></queue></gmac>";
  std::string transmit;
  std::string receive;
  for (const char number : std::string("0123456789")) {
    transmit += std::string("<queue sched_method=\"m\" weight=\"w") + number + "\" size=\"s" +
                number + "\"></queue>";
    receive += std::string("<queue size=\"r") + number + "\"></queue>";
  }
  return "<t><mtu_setting><mtu_setting_enabled>e</mtu_setting_enabled><ipv4_mtu_ds>ds</ipv4_mtu_ds>"
         "<ipv4_mtu_us>us</ipv4_mtu_us><ipv4_pppoe_mtu_us>po</ipv4_pppoe_mtu_us></mtu_setting>"
         "<port_init><tx_module_parameters>" +
         module + module + "<tx_mod><queue_map>" + transmit + "</queue_map></tx_mod>" + module +
         "</tx_module_parameters><gmac_config><gmac_rx_queues>" + mac + mac + "<gmac>" + receive +
         "</gmac>" + mac +
         "</gmac_rx_queues></gmac_config></port_init>"
         "<flow_control><enabled>on</enabled></flow_control></t>";
}

void SettingsUnit::check(const SettingsCase& c) {
  writeFile(kSettings, mainSettings() + kComment);
  writeFile(kTpm, tpmSettings() + kComment);
  const int watch = startWatch();
  const Outcome outcome = cgi(get(c.query));
  EXPECT_EQ(endWatch(watch), c.written) << c.label;
  EXPECT_EQ(outcome.out, c.reply) << c.label;
  EXPECT_EQ(outcome.scripts.empty() ? outcome.commands : outcome.scripts, c.runs) << c.label;
  if (!outcome.scripts.empty()) {
    EXPECT_EQ(outcome.commands, (std::vector<std::string>{"clish </tmp/TempFile >/dev/null ",
                                                          "rm -f /tmp/TempFile"}));
    EXPECT_FALSE(exists("/tmp/TempFile"));
  }
  std::string main = mainSettings();
  std::string tpm = tpmSettings();
  for (const SettingsCase::Change& change : c.changes) {
    int count = 0;
    replaceAll(main, change, count);
    replaceAll(tpm, change, count);
    EXPECT_GT(count, 0) << c.label << ": " << change.from;
  }
  const auto after = [&](const char* file) {
    return c.written.find(file) == std::string::npos ? kComment : "";
  };
  EXPECT_EQ(readFile(kSettings), main + after("tevo ")) << c.label;
  EXPECT_EQ(readFile(kTpm), tpm + after("tpm ")) << c.label;
}

void SettingsUnit::checkWithoutValues(const std::string& query, const std::string& reply) {
  for (const char* content :
       {"<x><vlan/><switch/><mac_aging_time/><storm/><flow_control/></x>", "", "no xml"}) {
    writeFile(kSettings, content);
    writeFile(kTpm, content);
    EXPECT_EQ(Unit::reply(query), reply) << query << content;
    EXPECT_EQ(readFile(kSettings) + readFile(kTpm), std::string(content) + content) << query;
  }
  std::filesystem::remove(kSettings);
  std::filesystem::remove(kTpm);
  EXPECT_EQ(Unit::reply(query), reply) << query;
  EXPECT_FALSE(exists(kSettings) || exists(kTpm)) << query;
}

}  // namespace onu::test
