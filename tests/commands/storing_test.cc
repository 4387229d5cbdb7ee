// Action 1 of the commands that store settings, and those for accounts.

#include <filesystem>
#include <fstream>

#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

namespace fs = std::filesystem;

const OddText kOdd;
const std::string kOk = json("0");
// The files written where a script goes through clish.
const std::string kRun = "TempFile commands clish commands ";

// What the command shell gets in one of its modes.
std::string script(const std::string& line) { return "eoam\n" + line + "\n\nquit\n"; }

using Storing = SettingsUnit;

TEST_F(Storing, WithoutValues) {
  checkWithoutValues({
      {"cmd_id=1&username=admin&password=pw", json("1")},
      {"cmd_id=5&action=1&loid=l&password=p", json("1")},
      {"cmd_id=6&action=1&ip=10.0.0.10&netmask=255.0.0.0", errorPage(405, "set ip fail")},
      {"cmd_id=14&action=1&port=0", errorPage(405, "set port loopdetect fail")},
      {"cmd_id=16&action=1&ipv4DsMtu=1", errorPage(405, "set mtu fail")},
      {"cmd_id=17&action=1&mc_mode=7", errorPage(405, "set mtu fail")},
      {"cmd_id=19&pwdold=&pwdnew=new", json("2")},
      // The switch has been told nevertheless.
      {"cmd_id=22&action=1&portId=0&mode=1", json("1"), kRun, Texts{},
       Texts{script("port vlan transparent 0")}},
      {"cmd_id=23&action=1&port=0&flow_control=1", json("1  ")},
      {"cmd_id=24&action=1&iso=1", json("1")},
      {"cmd_id=25&action=1&age_time=1", json(" 1")},
      {"cmd_id=26&action=1&algo_mode=1", kOk},
      {"cmd_id=27&action=1&que_id=0&usr_pri=1", json("1")},
      {"cmd_id=28&action=1&voq_dir=0&voq_id=0&voq_thresh=1", json("1")},
      {"cmd_id=28&action=1&voq_dir=1&voq_id=0&voq_thresh=1", json("1")},
      {"cmd_id=30&action=1&bs=4&bs_thresh=5", json("1")},
  });
}

TEST_F(Storing, OtherActions) {
  for (const char* command :
       {"5", "6", "14", "16", "17", "23", "24", "25", "26", "27", "28", "30"}) {
    check({{std::string("cmd_id=") + command +
                "&action=2&port=0&ip=10.0.0.10&netmask=255.0.0.0&bs=0&voq_id=0",
            ""}});
  }
  check({{"cmd_id=22&action=2&portId=0&mode=1", json("1")}});
}

TEST_F(Storing, Accounts) {
  check({
      {"cmd_id=1&username=admin&password=se<cret", kOk},
      {"cmd_id=1&username=admin&password=secret", json("2")},
      {"cmd_id=1&action=1&username=user&password=", kOk},
      {"cmd_id=1&username=guest&password=", kOk},
      {"cmd_id=19&pwdold=se<creT&pwdnew=y", json("1")},
      {"cmd_id=19&action=0&pwdold=se<cret&pwdnew=y", kOk, "tevo ", Texts{"se&lt;cret", "y"}},
      {"cmd_id=20&pwdold=x&pwdnew=y", json("1")},
      {"cmd_id=20&pwdold=&pwdnew=", kOk},
      {"cmd_id=20&pwdnew=" + kOdd.text + "&pwdold=", kOk, "tevo ",
       Texts{"<user><", "<user>" + kOdd.asText + "<"}},
  });
}

TEST_F(Storing, Switches) {
  const std::string loop = "loopdetect=\"";
  const std::string refused = errorPage(405, "set port loopdetect fail");
  const std::string set = "cmd_id=14&action=1";
  check({
      {set + "&port=1&loop_detect=0", kOk, "eoam ", Texts{loop + "2", loop + "1"}},
      {set + "&port=0&loop_detect=00", kOk, "eoam ", Texts{loop + "1", loop + "2"}},
      {set, kOk, "eoam ", Texts{loop + "1", loop + "2"}},
      {set + "&port=1x&loop_detect=yes", kOk},
      {set + "&port=2", refused},
      {set + "&port=-1", refused},
      {"cmd_id=17&action=1&mc_mode=" + kOdd.text, kOk, "eoam ", Texts{"a&lt;\"b", kOdd.asText}},
      {"cmd_id=17&action=1", kOk, "eoam ", Texts{"a&lt;\"b", ""}},
      {"cmd_id=17&action=1&mc_mode=a<\"b", kOk},
      {"cmd_id=24&action=1&iso=true", kOk, "omci ", Texts{"true", "false"}},
      {"cmd_id=24&action=1&iso=1", kOk},
  });
  const std::string iso = "cmd_id=24&action=1&iso=1";
  check({{iso, kOk, "omci ", Texts{"false", "true"}}},
        {{"omci",
          "<o><OMCI_MIB><ethPortIsolated enabled=\"false\"></ethPortIsolated></OMCI_MIB></o>"}});
  check({{iso, json("1")}}, {{"omci", "<o><OMCI_MIB><ethPortIsolated/>"}});
}

TEST_F(Storing, AddressAndMtu) {
  const std::string ip = "cmd_id=6&action=1";
  const std::string mtu = "cmd_id=16&action=1";
  const std::string refused = errorPage(405, "set ip fail");
  check({
      {ip + "&ip=192.168.1.1&netmask=255.255.255.0", kOk},
      {ip + "&netmask=12345678&ip=" + kOdd.text, kOk, "tevo ",
       Texts{"192.168.1.1", kOdd.asText, "255.255.255.0", "12345678"}},
      {ip + "&ip=10.0.0.1&netmask=255.255.255.0", kOk, "tevo ", Texts{"192.168.1.1", "10.0.0.1"}},
      {ip + "&ip=1.1.1.1&netmask=255.0.0.0", refused},
      {ip + "&ip=10.0.0.10&netmask=255.0.0", refused},
      {mtu + "&ipv4DsMtu=1&ipv4UsMtu=2&ipv4pppoeUsMtu=" + kOdd.text, kOk, "tpm ",
       Texts{">e<", ">1<", ">ds<", ">1<", ">us<", ">2<", ">po<", ">" + kOdd.asText + "<"}},
  });
  // The message of the settings stands in front of the page.
  check({{ip + "&ip=10.0.0.10&netmask=255.0.0.0", "set ip address type  error\n" + refused}},
        {{"tevo", "<x><ipInfo><netMask/></ipInfo></x>"}});
  // Limits that the file lacks are not added; it is written though nothing changes.
  check({{mtu + "&ipv4UsMtu=7", kOk, "tpm "}},
        {{"tpm", "<t><mtu_setting><ipv4_mtu_us>7</ipv4_mtu_us></mtu_setting></t>"}});
}

// Port 0 as it is stored; its phy_admin gets lost.
std::string port(const std::string& flow, const std::string& negotiate, const std::string& mode) {
  return "\"\" flow_control=\"" + flow + "\" auto_neg=\"" + negotiate + "\" mode=\"" + mode + "\"";
}

TEST_F(Storing, PortsAndAgingBeforeTheyAreApplied) {
  const auto applied = [](const std::string& mode, const std::string& flow) {
    return Texts{"tpm\nconfig\nport autoneg 0 WAN true " + mode + "\nport fc 0 WAN " + flow +
                 "\n\n\nquit\n"};
  };
  const std::string port0 = R"("p0" flow_control="f0" auto_neg="a0" mode="m0")";
  const std::string set = "cmd_id=23&action=1";
  const std::string aging = "cmd_id=25&action=1&age_time=";
  const std::string line = "port mac_aging_time 0 UNI_0 ";
  check({
      {set + "&port=0&flow_control=0&auto=1&mode=3", kOk, "tevo tpm " + kRun,
       Texts{port0, port("0", "1", "3"), ">on<", ">0<"}, applied("3", "flase")},
      {set + "&port=0&flow_control=on&auto=0&mode=m0", kOk, "tevo " + kRun,
       Texts{port0, port("on", "0", "m0")}, applied("m0", "true")},
      {set + "&port=0&flow_control=00&auto=\"&mode=" + kOdd.text, kOk, "tevo tpm " + kRun,
       Texts{port0, port("00", "&quot;", kOdd.asAttribute), ">on<", ">00<"},
       applied(kOdd.text, "true")},
      {set + "&port=0", kOk, "tevo tpm " + kRun, Texts{port0, port("", "", ""), ">on<", "><"},
       applied("", "true")},
      // Port 1 is applied to port 0 as well.
      {set + "&port=1&flow_control=on&mode=m", kOk, "tevo " + kRun,
       Texts{R"(mode="&lt;")", R"(mode="m" phy_admin="" flow_control="on" auto_neg="")"},
       applied("m", "true")},
      {set + "&port=2&flow_control=0", json("1  ")},
      {aging + "60", json(" 0"), "tevo " + kRun, Texts{"300", "60"}, Texts{script(line + "60")}},
      {aging + "300", json(" 0"), kRun, {}, Texts{script(line + "300")}},
      {aging + kOdd.text, json(" 0"), "tevo " + kRun, Texts{"300", kOdd.asAttribute},
       Texts{script(line + kOdd.text)}},
  });
  check({{set + "&port=1&flow_control=0&mode=m", kOk, "tevo " + kRun,
          Texts{R"(mode="&lt;")", R"(mode="m" phy_admin="" flow_control="0" auto_neg="")"},
          applied("m", "flase")}},
        {{"tpm", "<t><flow_control/></t>"}});
}

// A request for port 1, its command for clish and what it changes: nothing without a mode.
SettingsCase vlan(const std::string& values, const std::string& command,
                  const std::string& attributes) {
  SettingsCase c = {"cmd_id=22&action=1" + values, json("1"), kRun, {}, {script(command)}};
  if (!attributes.empty()) {
    c.reply = kOk;
    c.written += "tevo ";
    c.changes = {R"(mode="v1" default_vid="d1" vid_sum="n1" vid_serial="l1")", attributes};
  }
  return c;
}

TEST_F(Storing, VlanAfterItIsApplied) {
  EXPECT_EQ(cgi(get("cmd_id=22&action=1")).commands,
            (Texts{"clish </tmp/TempFile >/dev/null ", "rm -f /tmp/TempFile"}));
  const std::string list = "&def_vid=100&vid_sum=2&vid_serial=200,300";
  const std::string rest = R"( default_vid="100" vid_sum="2" vid_serial="200,300")";
  const std::string port1 = "&portId=1&mode=";
  check({
      vlan(port1 + "1" + list, "port vlan transparent 1", "mode=\"1\"" + rest),
      vlan(port1 + "2" + list, "port vlan tag 1  100", "mode=\"2\"" + rest),
      vlan(port1 + "3" + list, "port vlan translation  1  100 2  200,300", "mode=\"3\"" + rest),
      vlan(port1 + "4" + list, "port vlan trunk  1  100   2  200,300", "mode=\"4\"" + rest),
      vlan(port1 + " 2x&vid_serial=l1", "port vlan tag 1  ",
           R"(mode=" 2x" default_vid="d1" vid_sum="" vid_serial="l1")"),
      vlan(port1 + "4&vid_serial=" + kOdd.text, "port vlan trunk  1       " + kOdd.text,
           R"(mode="4" default_vid="d1" vid_sum="" vid_serial=")" + kOdd.asAttribute + "\""),
      vlan(port1 + "0" + list, "", ""),
      {"cmd_id=22&action=1&portId=2&mode=1",
       kOk,
       kRun,
       {},
       Texts{script("port vlan transparent 2")}},
  });
}

const std::string kAuthentication =
    "cmd_id=5&action=1&ponSerialNum=N&ponPassword=P&loid=abc&password=x<z&gpon_loid=GL"
    "&gpon_password=GP&sn=S&fec_mode=";

TEST_F(Storing, PonAuthentication) {
  const std::string loid = script("onu loid abc  x<z");
  for (const auto& [mode, second] :
       std::map<std::string, std::string>{{"0", script("pon fec_mode disable")},
                                          {"1", script("pon fec_mode enable")},
                                          {"2", loid}}) {
    const Texts changes = {
        "ABCD0000", "N",    ">pp<", ">P<",        "\"gl\"",          "\"GL\"", "\"gp\"",
        "\"GP\"",   ">sn<", ">S<",  "\"lp\">li<", "\"x&lt;z\">abc<", ">fm<",   ">" + mode + "<"};
    check({{kAuthentication + mode, kOk, "gpon omci tevo " + kRun + "tevo " + kRun, changes,
            Texts{loid, second}}});
  }
  // The same values: some are stored all the same.
  const std::string same = script("onu loid li  lp");
  check(
      {{"cmd_id=5&action=1&ponSerialNum=ABCD0000&ponPassword=pp&loid=li&password=lp&gpon_loid=gl"
        "&gpon_password=gp&sn=sn&fec_mode=fm",
        kOk, "omci tevo " + kRun + kRun, Texts{}, Texts{same, same}}});

  // It ends at the first failure that counts; those of the GPON files do not.
  const auto checkOnu = [](const SettingsCase& c, const std::string& values) {
    check({c}, {{"tevo", "<t><onu>" + values + "</onu></t>"}, {"omci", "<o/>"}, {"gpon", kAbsent}});
  };
  const std::string query = kAuthentication + "1";
  const std::string fec = "<fec_mode>fm</fec_mode>";
  const std::string oldLoid = "<loid password=\"p\">l</loid>";
  const std::string newLoid = "<loid password=\"x&lt;z\">abc</loid>";
  checkOnu({query, json("1")}, fec + oldLoid);
  checkOnu({query, json("1"), "tevo ", Texts{">s<", ">S<"}}, fec + "<sn>s</sn>");
  checkOnu({query, json("1"), "tevo " + kRun, Texts{">s<", ">S<", oldLoid, newLoid}, Texts{loid}},
           "<sn>s</sn>" + oldLoid);
  checkOnu({query, kOk, "tevo " + kRun + "tevo " + kRun,
            Texts{">s<", ">S<", oldLoid, newLoid, ">fm<", ">1<"},
            Texts{loid, script("pon fec_mode enable")}},
           fec + "<sn>s</sn>" + oldLoid);
}

// A file cut anywhere is read as far as it goes, and never written back as less than a document.
TEST_F(Storing, IntoATruncatedFile) {
  const std::string whole = readFile(kSettings);
  int rewritten = 0;
  for (std::size_t size = 0; size < whole.size(); size += 37) {
    const std::string cut = whole.substr(0, size);
    for (const char* query : {"cmd_id=20&pwdold=user&pwdnew=n", "cmd_id=30&action=1&bs=7"}) {
      writeFile(kSettings, cut);
      EXPECT_EQ(cgi(get(query)).status, 0) << query << size;
      const std::string after = readFile(kSettings);
      EXPECT_TRUE(after == cut || after.rfind("</tevo>") == after.size() - 7) << query << size;
      rewritten += after == cut ? 0 : 1;
    }
  }
  EXPECT_GT(rewritten, 10);
}

TEST_F(Storing, KeepsAFileThatCannotBeWritten) {
  const std::string before = readFile(kSettings);
  const std::string set = "cmd_id=20&pwdold=user&pwdnew=";
  fs::permissions(kSettings, fs::perms::owner_read);
  EXPECT_EQ(reply(set + "new"), kOk);
  EXPECT_EQ(readFile(kSettings), before);

  // A full disk: what is no longer than before fits.
  fs::remove(kSettings);
  writeFile("/small/settings.xml", before);
  fs::create_symlink("/small/settings.xml", kSettings);
  std::ofstream("/small/filler") << std::string(70000, 'x');  // as much as fits
  EXPECT_EQ(reply(set + std::string(8192, 'p')), kOk);
  EXPECT_EQ(readFile(kSettings), before);
  reply(set + "new");
  EXPECT_NE(readFile(kSettings).find("<user>new</user>"), std::string::npos);
}

}  // namespace
}  // namespace onu::test
