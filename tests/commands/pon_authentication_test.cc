#include <gtest/gtest.h>

#include <filesystem>

#include "config/omci_data.h"
#include "config/pon_serial_data.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOmci = "/etc/xml_params/omci_xml_cfg_file.xml";
constexpr const char* kGpon = "/etc/xml_params/gpon_xml_cfg_file.xml";
constexpr const char* kComment = "<!-- lost in the first rewrite -->";

// The three files, each with a comment until it is rewritten.
std::string settings(const std::string& onu, const std::string& comment = "") {
  return "<t>" + comment + "<ipInfo><onu_mac>00:50:43:11:22:33</onu_mac></ipInfo><onu>" + onu +
         "</onu></t>";
}
const std::string kOnu =
    "<fec_mode>1</fec_mode><fec_ability>0</fec_ability><sn>s</sn><loid password=\"p\">l</loid>";

std::string omci(const std::string& attributes, const std::string& comment = "") {
  return "<o>" + comment + "<OMCI_MIB><ctcLOIDAuth" + attributes + "></ctcLOIDAuth></OMCI_MIB></o>";
}

std::string gpon(const std::string& number, const std::string& password, const std::string& source,
                 const std::string& comment = "") {
  return "<g>" + comment + "<PON><PON_serial_num>" + number + "</PON_serial_num><PON_passwd>" +
         password + "</PON_passwd><PON_serial_src>" + source + "</PON_serial_src></PON></g>";
}

class PonAuthentication : public Unit {
 protected:
  void SetUp() override {
    Unit::SetUp();
    restoreFiles();
  }
  static void restoreFiles() {
    writeFile(kSettings, settings(kOnu, kComment));
    writeFile(kOmci, omci(" loid=\"gl\" password=\"gp\"", kComment));
    writeFile(kGpon, gpon("ABCD0000", "pp", "1", kComment));
  }
  static std::string script(const std::string& line) { return "eoam\n" + line + "\n\nquit\n"; }
};

TEST_F(PonAuthentication, IsRead) {
  EXPECT_EQ(reply("cmd_id=5"),
            json("{ctc_switch:\"1\",cur_mac:\"00:50:43:11:22:33\",fec_mode:\"1\",gpon_loid:\"gl\","
                 "gpon_password:\"gp\",loid:\"l\",password:\"p\",ponPassword:\"pp\","
                 "ponSerialNum:\"ABCD43112233\",sn:\"005043112233\"}"));
  EXPECT_EQ(reply("cmd_id=5&action=2"), "");
  EXPECT_EQ(readFile(kGpon), gpon("ABCD0000", "pp", "1", kComment)) << "reading writes nothing";

  writeFile(kSettings, settings("<fec_mode>1</fec_mode>"));  // without its ability it is not read
  fs::remove(kOmci);
  fs::remove(kGpon);
  EXPECT_EQ(reply("cmd_id=5&action=0"),
            json("{ctc_switch:\"1\",cur_mac:\"00:50:43:11:22:33\",fec_mode:\"\",gpon_loid:\"\","
                 "gpon_password:\"\",loid:\"\",password:\"\",ponPassword:\"\","
                 "ponSerialNum:\"\",sn:\"005043112233\"}"));
}

TEST_F(PonAuthentication, SerialNumber) {
  const std::string mac = "00:50:43:11:22:33";
  const std::string sn = "\",sn:\"005043112233\"}\n";
  struct Case {
    const char* label;
    const char* number;
    const char* source;
    std::string mac;
    std::string want;  // the end of the reply
  };
  for (const Case& c : {
           Case{"as stored", "ABCD0000", "0", mac, "ponSerialNum:\"ABCD0000" + sn},
           {"almost 1", "ABCD0000", "1 ", mac, "ponSerialNum:\"ABCD0000" + sn},
           {"no vendor", "AB", "1", mac, "ponSerialNum:\"AB43112233" + sn},
           {"shortest", "ABCD", "1", "0123456789abcd",
            "ponSerialNum:\"ABCD679acd\",sn:\"0134679acd\"}\n"},
           {"too short", "ABCD", "0", "0123456789abc", ""},
       }) {
    writeFile(kSettings, "<t><ipInfo><onu_mac>" + c.mac + "</onu_mac></ipInfo></t>");
    writeFile(kGpon, gpon(c.number, "", c.source));
    const std::string out = reply("cmd_id=5");
    EXPECT_EQ(out.substr(std::min(out.find("ponSerialNum"), out.size())), c.want) << c.label;
  }
}

// All parameters, in an order in which none is found inside the name of another.
std::string store(const std::string& fecMode) {
  return "cmd_id=5&action=1&loid=abc&password=x<z&sn=S&fec_mode=" + fecMode +
         "&ponSerialNum=N&ponPassword=P&gpon_loid=GL&gpon_password=GP";
}

const std::string kNewLoid = "<loid password=\"x&lt;z\">abc</loid>";

void expectGponStored(const std::string& label) {
  EXPECT_EQ(readFile(kOmci), omci(" loid=\"GL\" password=\"GP\"")) << label;
  EXPECT_EQ(readFile(kGpon), gpon("N", "P", "1")) << label;
}

TEST_F(PonAuthentication, IsStoredAndApplied) {
  const std::string loid = script("onu loid abc  x<z");
  const std::map<std::string, std::string> secondScripts = {{"0", script("pon fec_mode disable")},
                                                            {"1", script("pon fec_mode enable")},
                                                            {"2", loid},
                                                            {"", loid}};
  for (const auto& [mode, second] : secondScripts) {
    restoreFiles();
    const Outcome outcome = cgi(get(store(mode)));
    EXPECT_EQ(outcome.out, json("0")) << mode;
    EXPECT_EQ(outcome.scripts, (std::vector<std::string>{loid, second})) << mode;
    EXPECT_EQ(readFile(kSettings),
              settings("<fec_mode>" + mode + "</fec_mode><fec_ability>0</fec_ability><sn>S</sn>" +
                       kNewLoid))
        << mode;
    expectGponStored(mode);
  }
}

TEST_F(PonAuthentication, EndsAtTheFirstFailureThatCounts) {
  struct Case {
    const char* label;
    std::string before;
    std::string after;  // empty: not written
    std::vector<std::string> scripts;
  };
  const std::string fec = "<fec_mode>1</fec_mode>";
  for (const Case& c : {
           Case{"no sn", fec + "<loid>l</loid>", "", {}},
           {"no loid", fec + "<sn>s</sn>", fec + "<sn>S</sn>", {}},
           {"no mode",
            "<sn>s</sn><loid>l</loid>",
            "<sn>S</sn>" + kNewLoid,
            {script("onu loid abc  x<z")}},
       }) {
    restoreFiles();
    const std::string before = settings(c.before, kComment);
    writeFile(kSettings, before);
    const Outcome outcome = cgi(get(store("1")));
    EXPECT_EQ(outcome.out, json("1")) << c.label;
    EXPECT_EQ(outcome.scripts, c.scripts) << c.label;
    EXPECT_EQ(readFile(kSettings), c.after.empty() ? before : settings(c.after)) << c.label;
    expectGponStored(c.label);
  }
}

TEST_F(PonAuthentication, FailuresOfTheGponFilesDoNotCount) {
  writeFile(kOmci, "<o/>");
  fs::remove(kGpon);
  EXPECT_EQ(reply(store("0")), json("0"));
  EXPECT_EQ(readFile(kOmci), "<o/>");
  EXPECT_FALSE(exists(kGpon));
}

TEST_F(PonAuthentication, ResultsOfTheGponFile) {
  const PonSerialData& data = PonSerialData::getInstance();
  const std::string same = gpon("ABCD0000", "pp", "1", kComment);
  EXPECT_EQ(
      data.setPonSerialNum("ABCD0000") + data.setPonPassword("pp") + data.setPonSerialSrc("1"), 0);
  EXPECT_EQ(readFile(kGpon), same) << "not written";
  EXPECT_EQ(data.setPonSerialSrc("0"), 0);
  EXPECT_EQ(readFile(kGpon), gpon("ABCD0000", "pp", "0"));

  std::string value = "kept";
  writeFile(kGpon, "<g><PON/></g>");
  EXPECT_EQ(data.getPonPassword(value), 0);
  EXPECT_EQ(data.setPonPassword("new"), -1);
  writeFile(kGpon, "<g><PON_passwd>x</PON_passwd></g>");
  EXPECT_EQ(data.getPonPassword(value), -1);
  EXPECT_EQ(value, "kept");
}

TEST_F(PonAuthentication, ResultsOfTheOmciFile) {
  const OmciData& data = OmciData::getInstance();
  OmciLoid info;
  EXPECT_EQ(data.getOmciLoid(info), 0);
  EXPECT_EQ(data.setOmciLoid(info), 0);
  EXPECT_EQ(readFile(kOmci), omci(" loid=\"gl\" password=\"gp\"")) << "written, though the same";

  writeFile(kOmci, omci(" loid=\"only\""));
  EXPECT_EQ(data.getOmciLoid(info), 0);
  EXPECT_EQ(info.loid + info.password, "onlygp");
  EXPECT_EQ(data.setOmciLoid({"a", "b"}), 0);
  EXPECT_EQ(readFile(kOmci), omci(" loid=\"a\" password=\"b\""));

  writeFile(kOmci, "<o><OMCI_MIB/></o>");
  EXPECT_EQ(data.getOmciLoid(info), -1);
  EXPECT_EQ(data.setOmciLoid(info), -1);
}

}  // namespace
}  // namespace onu::test
