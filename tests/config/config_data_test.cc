#include "config/config_data.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

const ConfigData& config() { return ConfigData::getInstance(); }

// A comment shows whether the file was written: it does not survive that.
const char* const kComment = "<!-- untouched -->";

class MainSettings : public Unit {
 protected:
  static void settings(const std::string& content) {
    writeFile(kSettings, "<cfg>" + content + "</cfg>" + kComment);
  }
  // The file after a write, or the settings() before it.
  static std::string written(const std::string& content) { return "<cfg>" + content + "</cfg>"; }
};

TEST_F(MainSettings, AreReadFromTheFactoryFile) {
  CommInfo comm;
  EXPECT_EQ(config().getCommInfo(comm), 0);
  EXPECT_EQ(comm.vendor + "|" + comm.model + "|" + comm.softwareVersion + "|" + comm.onu_id,
            "TEVO|SFU-1GE-3FE|V2.0.14 build 2026-08-31|00504302");
  IpInfo ip;
  EXPECT_EQ(config().getIpInfo(ip), 0);
  EXPECT_EQ(ip.ipAddress + "|" + ip.netMask + "|" + ip.onu_mac,
            "192.168.1.1|255.255.255.0|00:0C:E7:41:9A:2F");
  FecInfo fec;
  EXPECT_EQ(config().getFec(fec), 0);
  EXPECT_EQ(fec.fec_mode + fec.fec_ability, "11");
  std::string sn;
  EXPECT_EQ(config().getSn(sn), 0);
  EXPECT_EQ(sn, "TEVO00504302");
  LoidInfo loid;
  EXPECT_EQ(config().getLoid(loid), 0);
  EXPECT_EQ(loid.loid + "|" + loid.password, "loid00504302|loidpass");
  std::string time;
  EXPECT_EQ(config().getMacAgingTime("3", time), 0);
  EXPECT_EQ(time, "300");
  std::string mode;
  std::string threshold;
  EXPECT_EQ(config().getStorm(mode, threshold), 0);
  EXPECT_EQ(mode + "|" + threshold, "0|1024");
}

TEST_F(MainSettings, VlanPortsCarryMissingValuesOn) {
  settings(
      "<vlan><port default_vid='1' mode='2' vid_sum='3' vid_serial='4'>0</port><other/>"
      "<port default_vid='5'>1</port><port default_vid='6' mode='7'>2</port></vlan>");
  std::vector<VlanPortInfo> ports(1);
  ASSERT_EQ(config().getVlanPorts(ports), 0);
  std::string all;
  for (const VlanPortInfo& p : ports) {
    all += p.port + "," + p.mode + "," + p.default_vid + "," + p.vid_sum + "," + p.vid_serial + ";";
  }
  EXPECT_EQ(all, "0,2,1,3,4;1,2,5,3,4;2,7,6,3,4;");

  settings("<vlan><port mode='1'>0</port></vlan>");
  EXPECT_EQ(config().getVlanPorts(ports), -1);
  EXPECT_TRUE(ports.empty());
}

TEST_F(MainSettings, PhyPortsAreAppended) {
  settings(
      "<switch><port phy_admin='1' flow_control='2' auto_neg='3' mode='4' mode_max='5'>0</port>"
      "<port auto_neg='6'>1</port></switch>");
  std::vector<PhyPortInfo> ports;
  ASSERT_EQ(config().getPhyPorts(ports), 0);
  ASSERT_EQ(config().getPhyPorts(ports), 0);
  std::string all;
  for (const PhyPortInfo& p : ports) {
    all += p.port + p.phy_admin + p.flow_control + p.auto_neg + p.mode + p.mode_max + ";";
  }
  EXPECT_EQ(all, "012345;16;012345;16;");
}

TEST_F(MainSettings, AgeingTimeIsOfTheFirstPortThatHasOne) {
  settings(
      "<mac_aging_time><eth_port>0</eth_port><eth_port time='7'>0</eth_port>"
      "<eth_port time='8'>0</eth_port></mac_aging_time>");
  std::string time;
  EXPECT_EQ(config().getMacAgingTime("0", time), 0);
  EXPECT_EQ(time, "7");
  EXPECT_EQ(config().getMacAgingTime("1", time), -1);
}

TEST_F(MainSettings, MissingSingleValuesLeaveTheField) {
  settings(
      "<commInfo/><ipInfo/><account/><onu><fec_mode>1</fec_mode><loid>l</loid></onu>"
      "<storm><port/></storm>");
  CommInfo comm;
  comm.vendor = "old";
  EXPECT_EQ(config().getCommInfo(comm), 0);
  EXPECT_EQ(comm.vendor, "old");
  std::string text = "old";
  EXPECT_EQ(config().getAccountPassword("guest", text), 0);
  EXPECT_EQ(config().getStorm(text, text), 0);
  EXPECT_EQ(config().getSn(text), -1);
  EXPECT_EQ(text, "old");
  FecInfo fec;
  EXPECT_EQ(config().getFec(fec), -1);
  EXPECT_EQ(fec.fec_mode, "");
  LoidInfo loid;
  loid.password = "old";
  EXPECT_EQ(config().getLoid(loid), 0);
  EXPECT_EQ(loid.loid + loid.password, "lold");
}

struct Setter {
  const char* label;
  std::string before;
  std::function<int()> set;
  int result;
  std::string after;  // empty: not written
};

TEST_F(MainSettings, AreWrittenBackWhole) {
  const std::string ip =
      "<ipInfo><ipAddress>192.168.1.1</ipAddress>"
      "<netMask>255.255.255.0</netMask></ipInfo>";
  const std::string vlan =
      "<vlan><port mode=\"1\" default_vid=\"2\" vid_sum=\"3\" "
      "vid_serial=\"4\">0</port></vlan>";
  const std::string phy = "<switch><port mode=\"0\" mode_max=\"5\">0</port></switch>";
  const std::string age =
      "<mac_aging_time><eth_port>0</eth_port><eth_port time=\"9\">1</eth_port>"
      "</mac_aging_time>";
  const std::string storm = "<storm><port mode=\"0\" bs_thresh=\"8\">0</port><port/></storm>";
  const std::string account = "<account><admin>a</admin><user>u</user></account>";
  const std::vector<Setter> cases = {
      {"address", ip,
       [] {
         return config().setIpInfo({"10.0.0.10", "255.255.255.0", ""});
       },
       0, "<ipInfo><ipAddress>10.0.0.10</ipAddress><netMask>255.255.255.0</netMask></ipInfo>"},
      {"mask", ip,
       [] {
         return config().setIpInfo({"192.168.1.1", "255.255.0.0", ""});
       },
       0, "<ipInfo><ipAddress>192.168.1.1</ipAddress><netMask>255.255.0.0</netMask></ipInfo>"},
      {"same address", ip,
       [] {
         return config().setIpInfo({"192.168.1.1", "255.255.255.0", ""});
       },
       0, ""},
      {"short address", ip,
       [] {
         return config().setIpInfo({"1.2.3.4", "255.255.255.0", ""});
       },
       -1, ""},
      {"short mask", ip,
       [] {
         return config().setIpInfo({"10.0.0.10", "255.0.0", ""});
       },
       -1, ""},
      {"8 characters", ip,
       [] {
         return config().setIpInfo({"10.0.0.1", "254.0.0.", ""});
       },
       0, "<ipInfo><ipAddress>10.0.0.1</ipAddress><netMask>254.0.0.</netMask></ipInfo>"},
      {"address without its element", "<ipInfo><netMask/></ipInfo>",
       [] {
         return config().setIpInfo({"10.0.0.10", "255.255.255.0", ""});
       },
       -1, ""},
      {"mac", "<ipInfo><onu_mac>x</onu_mac></ipInfo>", [] { return config().setMac("<&>"); }, 0,
       "<ipInfo><onu_mac>&lt;&amp;&gt;</onu_mac></ipInfo>"},
      {"mac is written though unchanged", "<ipInfo><onu_mac>x</onu_mac></ipInfo>",
       [] { return config().setMac("x"); }, 0, "<ipInfo><onu_mac>x</onu_mac></ipInfo>"},
      {"mac without its element", "<ipInfo/>", [] { return config().setMac("x"); }, -1, ""},
      {"password", account, [] { return config().setAdminPassword("b\n"); }, 0,
       "<account><admin>b\n</admin><user>u</user></account>"},
      {"same password", account, [] { return config().setUserPassword("u"); }, 0, ""},
      {"password without its element", "<account/>", [] { return config().setUserPassword("u"); },
       -1, ""},
      {"vlan", vlan,
       [] {
         return config().setVlanPort({"0", "5", "6", "7", "8"});
       },
       0,
       "<vlan><port mode=\"5\" default_vid=\"6\" vid_sum=\"7\" vid_serial=\"8\">0</port></vlan>"},
      {"vlan without default", vlan,
       [] {
         return config().setVlanPort({"0", "5", "", "", ""});
       },
       0, "<vlan><port mode=\"5\" default_vid=\"2\" vid_sum=\"\" vid_serial=\"\">0</port></vlan>"},
      {"vlan of no port", vlan,
       [] {
         return config().setVlanPort({"9", "5", "6", "7", "8"});
       },
       0, ""},
      {"vlan without ports", "<vlan/>",
       [] {
         return config().setVlanPort({"9", "", "", "", ""});
       },
       -1, ""},
      {"fec", "<onu><fec_mode>0</fec_mode></onu>", [] { return config().setFecMode("1"); }, 0,
       "<onu><fec_mode>1</fec_mode></onu>"},
      {"same fec", "<onu><fec_mode>0</fec_mode></onu>", [] { return config().setFecMode("0"); }, 0,
       ""},
      {"sn", "<onu><sn/></onu>", [] { return config().setSn("S"); }, 0, "<onu><sn>S</sn></onu>"},
      {"same sn", "<onu><sn>S</sn></onu>", [] { return config().setSn("S"); }, 0, ""},
      {"loid is written though unchanged", "<onu><loid password=\"p\">l</loid></onu>",
       [] {
         return config().setLoid({"l", "p"});
       },
       0, "<onu><loid password=\"p\">l</loid></onu>"},
      {"loid without password", "<onu><loid>l</loid></onu>",
       [] {
         return config().setLoid({"m", "\"\n"});
       },
       0, "<onu><loid password=\"&quot;&#xA;\">m</loid></onu>"},
      {"phy", phy,
       [] {
         return config().setPhyPort({"0", "1", "2", "3", "4", "6"});
       },
       0,
       "<switch><port mode=\"4\" mode_max=\"5\" phy_admin=\"1\" flow_control=\"2\" "
       "auto_neg=\"3\">0</port></switch>"},
      {"phy of no port", phy,
       [] {
         return config().setPhyPort({"1", "", "", "", "", ""});
       },
       -1, ""},
      {"ageing", age, [] { return config().setMacAgingTime("0", "5"); }, 0,
       "<mac_aging_time><eth_port time=\"5\">0</eth_port><eth_port time=\"9\">1</eth_port>"
       "</mac_aging_time>"},
      {"same ageing", age, [] { return config().setMacAgingTime("1", "9"); }, 0, ""},
      {"ageing of no port", age, [] { return config().setMacAgingTime("2", "9"); }, -1, ""},
      {"storm", storm, [] { return config().setStorm("1", "2"); }, 0,
       "<storm><port mode=\"1\" bs_thresh=\"2\">0</port><port></port></storm>"},
      {"storm without threshold", storm, [] { return config().setStorm("1", ""); }, 0,
       "<storm><port mode=\"1\" bs_thresh=\"8\">0</port><port></port></storm>"},
      {"storm without port", "<storm/>", [] { return config().setStorm("1", "2"); }, -1, ""},
  };
  for (const Setter& c : cases) {
    settings(c.before);
    const std::string before = readFile(kSettings);
    EXPECT_EQ(c.set(), c.result) << c.label;
    EXPECT_EQ(readFile(kSettings), c.after.empty() ? before : written(c.after)) << c.label;
  }
}

// Every operation, with 0 for one that succeeded.
std::vector<int> everyOperation() {
  CommInfo comm;
  IpInfo ip;
  FecInfo fec;
  LoidInfo loid;
  std::string text;
  std::vector<VlanPortInfo> vlan;
  std::vector<PhyPortInfo> phy;
  return {config().getCommInfo(comm),
          config().getIpInfo(ip),
          config().setIpInfo({"10.0.0.10", "255.255.255.0", ""}),
          config().setMac("m"),
          config().getAdminPassword(text),
          config().getUserPassword(text),
          config().setAdminPassword("p"),
          config().setUserPassword("p"),
          config().getVlanPorts(vlan),
          config().setVlanPort({"0", "1", "2", "3", "4"}),
          config().getFec(fec),
          config().setFecMode("2"),
          config().getSn(text),
          config().setSn("s"),
          config().getLoid(loid),
          config().setLoid(loid),
          config().getPhyPorts(phy),
          config().setPhyPort({"0", "", "", "", "", ""}),
          config().getMacAgingTime("0", text),
          config().setMacAgingTime("0", "1"),
          config().getStorm(text, text),
          config().setStorm("1", "2")};
}

TEST_F(MainSettings, UnusableFilesFailEveryOperation) {
  const std::vector<int> failed(everyOperation().size(), -1);
  for (const std::string& content :
       {std::string(), std::string("\0\xff\xfe<", 4), std::string("no markup"),
        std::string("<cfg/>"), std::string("<cfg><vlan/><switch/><storm/>")}) {
    writeFile(kSettings, content);
    EXPECT_EQ(everyOperation(), failed) << content;
    EXPECT_EQ(readFile(kSettings), content);
  }
  std::filesystem::remove(kSettings);
  EXPECT_EQ(everyOperation(), failed);
  EXPECT_FALSE(exists(kSettings));
  std::filesystem::create_directory(kSettings);
  EXPECT_EQ(everyOperation(), failed);
}

// A file cut anywhere is read as far as it goes, and never written back as less than a document.
TEST_F(MainSettings, SurviveATruncatedFile) {
  const std::string whole = readFile(kSettings);
  for (std::size_t size = 0; size < whole.size(); size += 37) {
    writeFile(kSettings, whole.substr(0, size));
    everyOperation();
    const std::string after = readFile(kSettings);
    EXPECT_TRUE(after == whole.substr(0, size) || after.rfind("</tevo>") == after.size() - 7)
        << size;
  }
}

TEST_F(MainSettings, KeepAReadOnlyFile) {
  const std::string before = readFile(kSettings);
  std::filesystem::permissions(kSettings, std::filesystem::perms::owner_read);
  EXPECT_EQ(config().setSn("new"), 0);
  EXPECT_EQ(readFile(kSettings), before);
}

TEST_F(MainSettings, KeepTheFileOnAFullDisk) {
  const std::string before = readFile(kSettings);
  writeFile("/small/settings.xml", before);
  std::filesystem::remove(kSettings);
  std::filesystem::create_symlink("/small/settings.xml", kSettings);
  std::ofstream("/small/filler") << std::string(70000, 'x');  // as much as fits
  EXPECT_EQ(config().setSn(std::string(8192, 's')), 0);
  EXPECT_EQ(readFile(kSettings), before);
  EXPECT_EQ(config().setSn("shorter"), 0);
  EXPECT_NE(readFile(kSettings).find("<sn>shorter</sn>"), std::string::npos);
  std::filesystem::remove("/small/filler");
  EXPECT_EQ(config().setSn(std::string(8192, 's')), 0);
  std::string sn;
  EXPECT_EQ(config().getSn(sn), 0);
  EXPECT_EQ(sn, std::string(8192, 's'));
}

TEST_F(MainSettings, TakeALongFile) {
  std::string content;
  while (content.size() < 10 * 1024 * 1024) {
    content += "<!-- padding --><other a=\"b\">text</other>\n";
  }
  settings(content + "<onu><sn>S</sn></onu>");
  EXPECT_EQ(config().setSn("T"), 0);
  std::string sn;
  EXPECT_EQ(config().getSn(sn), 0);
  EXPECT_EQ(sn, "T");
}

}  // namespace
}  // namespace onu::test
