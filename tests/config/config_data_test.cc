#include "config/config_data.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

const ConfigData& config() { return ConfigData::getInstance(); }

class MainSettings : public Unit {
 protected:
  // A comment shows whether the file was written: it does not survive that.
  static void settings(const std::string& content) {
    writeFile(kSettings, "<cfg>" + content + "</cfg><!-- untouched -->");
  }
  // The result of a setter and the settings it leaves.
  template <typename Setter, typename... Values>
  static std::string after(const std::string& content, Setter set, const Values&... values) {
    settings(content);
    const std::string before = readFile(kSettings);
    const std::string result = std::to_string((config().*set)(values...));
    return result + (readFile(kSettings) == before ? " untouched" : readFile(kSettings));
  }
};

TEST_F(MainSettings, ListPorts) {
  settings(
      "<vlan><port default_vid='1' mode='2' vid_sum='3' vid_serial='4'>0</port><other/>"
      "<port default_vid='5'>1</port><port default_vid='6' mode='7'>2</port></vlan>"
      "<switch><port mode_max='1'>0</port><port mode='2'>1</port></switch>");
  std::vector<VlanPortInfo> vlans(1);
  std::vector<PhyPortInfo> phys(1);
  EXPECT_EQ(config().getVlanPorts(vlans) + config().getPhyPorts(phys), 0);
  std::string all;
  for (const VlanPortInfo& p : vlans) {
    all += p.port + p.mode + p.default_vid + p.vid_sum + p.vid_serial + ";";
  }
  for (const PhyPortInfo& p : phys) {
    all += p.port + p.mode + p.mode_max + ";";
  }
  EXPECT_EQ(all, "02134;12534;27634;;01;12;") << "missing values go on; what there was stays";

  settings("<vlan><port default_vid='1'>0</port><port mode='1'>1</port></vlan>");
  EXPECT_EQ(config().getVlanPorts(vlans), -1);
  EXPECT_TRUE(vlans.empty());
}

TEST_F(MainSettings, MissingSingleValuesLeaveTheField) {
  settings(
      "<commInfo><vendor>v</vendor><onu_id>i</onu_id></commInfo><account/><storm><port/></storm>"
      "<onu><fec_mode>1</fec_mode><loid>l</loid></onu><mac_aging_time><eth_port>0</eth_port>"
      "<eth_port time='7'>0</eth_port><eth_port time='8'>0</eth_port></mac_aging_time>");
  CommInfo comm{"-", "-", "-", "-"};
  FecInfo fec{"-", "-"};
  LoidInfo loid{"-", "-"};
  std::string text = "-";
  EXPECT_EQ(config().getCommInfo(comm), 0);
  EXPECT_EQ(config().getAccountPassword("guest", text), 0);
  EXPECT_EQ(config().getStorm(text, text), 0);
  EXPECT_EQ(config().getSn(text), -1);
  EXPECT_EQ(config().getMacAgingTime("1", text), -1);
  EXPECT_EQ(config().getFec(fec), -1);
  EXPECT_EQ(config().getLoid(loid), 0);
  EXPECT_EQ(comm.vendor + comm.model + comm.softwareVersion + comm.onu_id, "v--i");
  EXPECT_EQ(text + fec.fec_mode + loid.loid + loid.password, "--l-");
  EXPECT_EQ(config().getMacAgingTime("0", text), 0);
  EXPECT_EQ(text, "7") << "of the first port that has one";
}

// What the commands leave open of the setters they use.
TEST_F(MainSettings, AreSet) {
  using D = ConfigData;
  const std::string none = "<ipInfo><ipAddress></ipAddress><netMask></netMask></ipInfo>";
  const std::string ip =
      "<ipInfo><ipAddress>10.0.0.1</ipAddress><netMask>254.0.0.</netMask></ipInfo>";
  const IpInfo shortest{"10.0.0.1", "254.0.0.", ""};
  EXPECT_EQ(after(none, &D::setIpInfo, IpInfo{"1.2.3.4", "255.0.0.0", ""}), "-1 untouched");
  EXPECT_EQ(after(none, &D::setIpInfo, IpInfo{"10.0.0.10", "255.0.0", ""}), "-1 untouched");
  EXPECT_EQ(after(none, &D::setIpInfo, shortest), "0<cfg>" + ip + "</cfg>");
  EXPECT_EQ(after("<ipInfo><netMask/></ipInfo>", &D::setIpInfo, shortest), "-1 untouched");

  const std::string age = R"(>0</eth_port><eth_port time="9">1</eth_port></mac_aging_time>)";
  const std::string ages = "<mac_aging_time><eth_port" + age;
  EXPECT_EQ(after(ages, &D::setMacAgingTime, "2", "5"), "-1 untouched");
  EXPECT_EQ(after(ages, &D::setMacAgingTime, "0", "5"),
            "0<cfg><mac_aging_time><eth_port time=\"5\"" + age + "</cfg>");

  const std::string same =
      ip + ages + "<account><admin>a</admin></account><onu><fec_mode>1</fec_mode><sn>s</sn>" +
      R"(<loid password="p">l</loid></onu><vlan><port mode="1" default_vid="2" vid_sum="3" )" +
      R"(vid_serial="4">0</port></vlan><switch><port phy_admin="1" flow_control="2" auto_neg="3" )" +
      R"(mode="4">0</port></switch><storm><port mode="1" bs_thresh="2">0</port></storm>)";
  const std::string written = "0<cfg>" + same + "</cfg>";
  EXPECT_EQ(after(same, &D::setLoid, LoidInfo{"l", "p"}), written);
  EXPECT_EQ(after(same, &D::setVlanPort, VlanPortInfo{"0", "1", "2", "3", "4"}), written);
  EXPECT_EQ(after(same, &D::setPhyPort, PhyPortInfo{"0", "1", "2", "3", "4", "-"}), written);
  EXPECT_EQ(after(same, &D::setStorm, "1", "2"), written);
  EXPECT_EQ(after(same, &D::setIpInfo, shortest), "0 untouched");
  EXPECT_EQ(after(same, &D::setAdminPassword, "a"), "0 untouched");
  EXPECT_EQ(after(same, &D::setFecMode, "1"), "0 untouched");
  EXPECT_EQ(after(same, &D::setSn, "s"), "0 untouched");
  EXPECT_EQ(after(same, &D::setMacAgingTime, "1", "9"), "0 untouched");
  const std::string mac = "<ipInfo><onu_mac>m</onu_mac></ipInfo>";
  EXPECT_EQ(after(mac, &D::setMac, "m"), "0<cfg>" + mac + "</cfg>");
}

template <typename... Results>
std::vector<int> listed(Results... results) {
  return {results...};
}

// Every operation, with 0 for one that succeeded.
std::vector<int> everyOperation() {
  const ConfigData& c = config();
  CommInfo comm;
  IpInfo ip;
  FecInfo fec;
  LoidInfo loid;
  std::string text;
  std::vector<VlanPortInfo> vlans;
  std::vector<PhyPortInfo> phys;
  return listed(c.getCommInfo(comm), c.getIpInfo(ip), c.getAdminPassword(text),
                c.getUserPassword(text), c.getVlanPorts(vlans), c.getFec(fec), c.getSn(text),
                c.getLoid(loid), c.getPhyPorts(phys), c.getMacAgingTime("0", text),
                c.getStorm(text, text), c.setIpInfo({"10.0.0.10", "255.255.255.0", ""}),
                c.setMac("m"), c.setAdminPassword("p"), c.setUserPassword("p"),
                c.setVlanPort({"0", "1", "2", "3", "4"}), c.setFecMode("2"), c.setSn("s"),
                c.setLoid({"l", "p"}), c.setPhyPort({"0", "", "", "", "", ""}),
                c.setMacAgingTime("0", "1"), c.setStorm("1", "2"));
}

TEST_F(MainSettings, UnusableFilesFailEveryOperation) {
  const std::vector<int> failed(everyOperation().size(), -1);
  for (const std::string& content :
       {""s, "\0\xff\xfe<"s, "no markup"s, "<cfg/>"s, "<cfg><vlan/><switch/><storm/>"s}) {
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
    const std::string cut = whole.substr(0, size);
    writeFile(kSettings, cut);
    everyOperation();
    const std::string after = readFile(kSettings);
    EXPECT_TRUE(after == cut || after.rfind("</tevo>") == after.size() - 7) << size;
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
  content += "<onu><sn>S</sn></onu>";
  EXPECT_EQ(after(content, &ConfigData::setSn, "T").substr(0, 6), "0<cfg>");
  std::string sn;
  EXPECT_EQ(config().getSn(sn), 0);
  EXPECT_EQ(sn, "T");
}

}  // namespace
}  // namespace onu::test
