#include "tests/support/unit.h"

#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

namespace onu::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSuffix = "_xml_cfg_file.xml";

// The names of the files written while a request is answered, again without a change as well.
std::string written(const std::function<void()>& request) {
  const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (const char* folder : {"/var/tevo/website/www/xml", "/etc/xml_params",
                             "/sys/devices/platform/tpm/cfg_traffic", "/tmp", "/record"}) {
    EXPECT_GE(::inotify_add_watch(queue, folder, IN_MODIFY | IN_MOVED_TO), 0) << folder;
  }
  request();
  std::string names;
  alignas(inotify_event) std::array<char, 65536> buffer;
  const char* const end = buffer.data() + ::read(queue, buffer.data(), buffer.size());
  ::close(queue);
  for (const char* at = buffer.data(); at < end;) {
    const auto* const event = reinterpret_cast<const inotify_event*>(at);
    const std::string name = event->name;
    // A hidden file is a settings file to be: it counts once it has got its name.
    names += name.front() == '.' ? "" : name.substr(0, name.find(kSuffix)) + " ";
    at += sizeof *event + event->len;
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

// For what is printed of a failure.
std::string brief(std::string text) {
  replaceAll(text, std::string(65536, 'x'), "(64 KiB)");
  return text;
}

// Settings as the tree writes them, in which every value is a text of its own.
Unit::Files settings() {
  std::string tx;
  std::string rx;
  for (const std::string queue : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
    tx += R"(<queue sched_method="m" weight="w)" + queue + "\" size=\"s" + queue + "\"></queue>\n";
    rx += "<queue size=\"r" + queue + "\"></queue>\n";
  }
  return {
      {"tevo", R"(<m><commInfo><model>M</model><softwareVersion>S"1</softwareVersion></commInfo>
<ipInfo><ipAddress>192.168.1.1</ipAddress><netMask>255.255.255.0</netMask>
  <onu_mac>02:10:20:30:40:50</onu_mac></ipInfo>
<account><admin>se&lt;cret</admin><user></user></account>
<vlan><port mode="v0" default_vid="d0" vid_sum="n0" vid_serial="l0">0</port>
  <port mode="v1" default_vid="d1" vid_sum="n1" vid_serial="l1">1</port></vlan><onu>
<fec_mode>fm</fec_mode><fec_ability>fa</fec_ability><sn>sn</sn><loid password="lp">li</loid></onu>
<switch><port phy_admin="p0" flow_control="f0" auto_neg="a0" mode="m0" mode_max="x0">0</port>
  <o></o><port mode="&lt;">1</port></switch>
<mac_aging_time><eth_port time="9">1</eth_port><eth_port time="300">0</eth_port></mac_aging_time>
<storm><port mode="b0" bs_thresh="t0">0</port><port mode="b1">1</port></storm></m>)"},
      {"tpm",
       R"(<t><mtu_setting><mtu_setting_enabled>e</mtu_setting_enabled><ipv4_mtu_ds>ds</ipv4_mtu_ds>
<ipv4_mtu_us>us</ipv4_mtu_us><ipv4_pppoe_mtu_us>po</ipv4_pppoe_mtu_us></mtu_setting><port_init>
<tx_module_parameters><tx_mod></tx_mod><tx_mod><queue_map><queue></queue></queue_map></tx_mod>
<tx_mod><queue_map>)" +
           tx + R"(</queue_map></tx_mod><tx_mod></tx_mod></tx_module_parameters>
<gmac_config><gmac_rx_queues><gmac></gmac><gmac><queue></queue></gmac><gmac>)" +
           rx +
           R"(</gmac><gmac></gmac></gmac_rx_queues></gmac_config></port_init>
<flow_control><enabled>on</enabled></flow_control></t>)"},
      {"eoam", R"(<e><ONU_MULTICAST><oam_multicast_switch>a&lt;"b</oam_multicast_switch>
<port groupnum="32"></port><port groupnum="33"></port></ONU_MULTICAST><ONU_LOOPDETECT>
<port loopdetect="1">0</port><port loopdetect="2">1</port></ONU_LOOPDETECT></e>)"},
      {"omci", R"(<o><OMCI_MIB><ctcLOIDAuth loid="gl" password="gp"></ctcLOIDAuth>
<ethPortIsolated a="&quot;" enabled="true"></ethPortIsolated></OMCI_MIB></o>)"},
      {"gpon", R"(<g><PON><PON_serial_num>ABCD0000</PON_serial_num>
<PON_passwd>pp</PON_passwd><PON_serial_src>1</PON_serial_src></PON></g>)"}};
}

}  // namespace

Request get(const std::string& query) {
  return {{{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}};
}

Request post(const std::string& body, const std::string& length) {
  return {{{"REQUEST_METHOD", "POST"},
           {"CONTENT_TYPE", "application/x-www-form-urlencoded"},
           {"CONTENT_LENGTH", length.empty() ? std::to_string(body.size()) : length}},
          body};
}

Request upload(const std::string& query, const std::string& body, const std::string& length) {
  Request request = post(body, length);
  request.environment["QUERY_STRING"] = query;
  request.environment["CONTENT_TYPE"] = "multipart/form-data; boundary=x";
  return request;
}

std::string json(const std::string& body) {
  return "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n" + body +
         "\n";
}

std::string errorPage(int code, const std::string& message) {
  const std::string number = std::to_string(code);
  return "HTTP/1.1 " + number + message + "\nConnection:close\n<HTML><BODY><p>Error:" + number +
         " -- " + message + "</p></BODY></HTML>\n";
}

std::string eoam(const std::string& line) { return "eoam\n" + line + "\n\nquit\n"; }

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream file(path, std::ios::binary);
  ASSERT_TRUE(file << text << std::flush) << "cannot write " << path;
}

Texts split(const std::string& text, char end) {
  std::istringstream rest(text);
  Texts pieces;
  for (std::string piece; std::getline(rest, piece, end);) {
    pieces.push_back(piece);
  }
  return pieces;
}

bool exists(const std::string& path) { return fs::exists(fs::symlink_status(path)); }

void Unit::reset() {
  for (const char* folder : {"/etc", "/var", "/sys", "/tmp", "/record", "/small"}) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      fs::remove_all(entry.path());
    }
  }
  fs::copy("/factory", "/", fs::copy_options::recursive);
}

void Unit::SetUp() {
  ASSERT_TRUE(exists("/factory")) << "run this inside a unit: sim/unit run BUILD /build/NAME";
  reset();
}

Outcome Unit::run(const std::string& line, const Request& request) {
  fs::remove("/record/commands");
  fs::remove("/record/clish");
  writeFile("/run/in", request.body);
  const std::string whole = "{ " + line + "\n} </run/in >/run/out 2>/run/err";
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGPIPE, SIG_DFL);
    ::clearenv();
    ::setenv("PATH", "/bin:/sbin", 1);
    for (const auto& [variable, value] : request.environment) {
      ::setenv(variable.c_str(), value.c_str(), 1);
    }
    ::execl("/bin/busybox", "sh", "-c", whole.c_str(), nullptr);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return {readFile("/run/out"), readFile("/run/err"), WEXITSTATUS(status),
          split(readFile("/record/commands"), '\0'), split(readFile("/record/clish"), '\0')};
}

std::string Unit::files() {
  return run("find /etc/xml_params /tmp /var/tevo/website/www/xml/*.xml -type f "
             "-exec md5sum {} + | sort -k 2")
      .out;
}

std::string Unit::path(const std::string& file) {
  return file == "tevo" ? kSettings : "/etc/xml_params/" + file + kSuffix;
}

void Unit::check(const std::vector<Case>& cases, const Files& other) {
  for (const Case& c : cases) {
    const std::string label = c.query.substr(0, 100) + (other.empty() ? "" : other.begin()->second);
    Files want = other;
    want.merge(settings());
    for (const auto& [file, text] : want) {
      writeFile(path(file), text);
      if (text == kAbsent) {
        fs::remove(path(file));
      }
    }
    writeFile("/tmp/TempFile", "a longer script that another process has left behind" + c.query);
    Outcome outcome;
    EXPECT_EQ(written([&] { outcome = cgi(get(c.query)); }), c.written) << label;
    const bool isBody = !c.reply.empty() && c.reply.find("HTTP/") == std::string::npos;
    EXPECT_EQ(brief(outcome.out), brief(isBody ? json(c.reply) : c.reply)) << label;
    const Texts& runs = outcome.scripts.empty() ? outcome.commands : outcome.scripts;
    EXPECT_EQ(runs, split(c.runs, '|')) << label;
    const Texts changes = split(c.changes, '|');
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
      bool found = false;
      for (auto& [file, text] : want) {
        found = replaceAll(text, changes[i], changes[i + 1]) || found;
      }
      EXPECT_TRUE(found) << label << ": " << changes[i];
    }
    for (const auto& [file, text] : want) {
      EXPECT_EQ(brief(exists(path(file)) ? readFile(path(file)) : kAbsent), brief(text)) << label;
    }
  }
}

void Unit::checkWithoutValues(const std::vector<Case>& cases) {
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
