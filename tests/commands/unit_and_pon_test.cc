// Commands 2, 5 and 8: the unit, authentication and counters of its PON; what no command makes of
// the readers.

#include <filesystem>

#include "device/cli_runner.h"
#include "device/epon_info.h"
#include "tests/support/unit.h"

namespace onu::test {

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST_F(Unit, Command2UnitInformation) {
  check({{"cmd_id=2&action=1&port=1",
          R"({afec_ability:"fa",app_ver:"S"1",capabi_battery_backup:"0",)"
          R"(capabi_ds_que_num:"4",capabi_fe_bitmap:"0x0e",capabi_fe_num:"3",)"
          R"(capabi_ge_bitmap:"0x01",capabi_ge_num:"1",capabi_max_ds_queue:"4",)"
          R"(capabi_max_us_queue:"8",capabi_pots_num:"0",capabi_service_supported:"GE",)"
          R"(capabi_us_que_num:"8",chipset_chip_model:"6510",chipset_ic_ver:"2019/05/20",)"
          R"(chipset_rev:"a2",chipset_vendor_id:"5443",fec_mode:"fm",llid:"0x0005",)"
          R"(onu_fm_ver:"02.00.0e",onu_hw_ver:"V1.2",onu_id:"021020304050",)"
          R"(onu_ip:"192.168.1.1",onu_mac:"02:10:20:30:40:50",onu_model:"T143",)"
          R"(onu_netmask:"255.255.255.0",onu_soft_ver:"V2.0.14",onu_vendor_id:"TEVO",)"
          R"(reg_st:"1",type:"M"})"}});
  checkWithoutValues({{"cmd_id=2", ""}});
  writeFile(kSettings, "<c><ipInfo><onu_mac>0011223344556</onu_mac></ipInfo></c>");
  const Outcome outcome = cgi(get("cmd_id=2"));
  EXPECT_EQ(outcome.out + outcome.err,
            "onu-cgi: command 2: value of onu_mac is shorter than 14 characters: it has 13\n");
  EXPECT_EQ(outcome.status, 1);
}

// What the profile has in hexadecimal, with no length or digit to rely on, and the driver's file,
// which is read per line; pieces of the reply. An entry without a value, and one without a name,
// end their groups.
TEST_F(Unit, Command2ProfileAndLink) {
  const std::string info = "/sys/devices/platform/epon/info/infoEpon";
  const auto is = [](const std::string& name, const std::string& value) {
    return "<attrib name='" + name + "' value='" + value + "'/>";
  };
  for (const auto& [value, date, digits, version, link, llid, state] :
       std::vector<std::array<std::string, 7>>{
           {"0x130514", "2019/05/20", "130514", "13.05.14",  //
            "[abcdActive B C D E F]\n", "E", "1"},
           {"0xFFfEaBcc", "2255/254/171", "FFfEaBcc", "FF.fE.aB.cc",
            "x\n[abcdactive B C D E F G]\n", "E", "0"},
           {"0x190929", "2025/09/41", "190929", "19.09.29",
            "[abcdAct B C D E F]\n[abcd  ive 2 3 4 5]\n", "E5", "1"},
           {"0x1g05-1", "2001/05/00", "1g05-1", "1g.05.-1", "[abcdActive B C]\n", "", "1"},
           {"0x130", "2019/00/00", "130", "13.0", "", "", "0"},
           {"0", "2000/00/00", "", "", "", "", "0"},
           {"0x1111111111111111111111", "2017/17/17", "1111111111111111111111",
            "11.11.11.11.11.11.11.11.11.11.1", "", "", "0"},
       }) {
    writeFile(info, link);
    writeFile(kProfile, "<p><Vendor>" + is("Chip version", value) + is("Chip revision", value) +
                            is("Firmware version", value) + "<attrib name='SW version'/>" +
                            is("HW version", "x") + "</Vendor><Capability>" +
                            is("Battery backup support capability", "1") + "<attrib value='0'/>" +
                            is("POTS port number", "2"));
    const std::string out = reply("cmd_id=2");
    for (const std::string& want :
         Texts{"battery_backup:\"1\"", "pots_num:\"\"",
               "ic_ver:\"" + date + "\",chipset_rev:\"" + digits + "\"",
               ",llid:\"" + llid + "\",onu_fm_ver:\"" + version + "\",onu_hw_ver:\"\"",
               ",reg_st:\"" + state + "\","}) {
      EXPECT_NE(out.find(want), std::string::npos) << value << ": " << want << " in " << out;
    }
  }
  fs::remove(info);
  fs::remove(kProfile);
  EXPECT_NE(reply("cmd_id=2").find("llid:\"\",onu_fm_ver:\"\","), std::string::npos);
}

TEST_F(Unit, Command5PonAuthenticationIsRead) {
  checkWithoutValues({{"cmd_id=5", ""}, {"cmd_id=5&action=1&loid=l&password=p", "1"}});
  check({{"cmd_id=5", R"({ctc_switch:"1",cur_mac:"02:10:20:30:40:50",fec_mode:"fm",gpon_loid:"gl",)"
                      R"(gpon_password:"gp",loid:"li",password:"lp",ponPassword:"pp",)"
                      R"(ponSerialNum:"ABCD20304050",sn:"021020304050"})"}});
  // The address, number and its source, and ponSerialNum and sn of the reply: none for a short
  // address. Without its ability the mode of FEC is not read.
  const std::string mac = "00:50:43:11:22:33";
  for (const auto& [address, number, source, want, sn] : std::vector<std::array<std::string, 5>>{
           {mac, "ABCD0000", "0", "ABCD0000", "005043112233"},
           {mac, "AB", "1", "AB43112233", "005043112233"},
           {"0123456789abcd", "ABCD", "1", "ABCD679acd", "0134679acd"},
           {"0123456789abc", "ABCD", "0", "", ""},
       }) {
    const std::string whole = R"({ctc_switch:"1",cur_mac:")" + address +
                              R"(",fec_mode:"",gpon_loid:"only",gpon_password:"",loid:"",)"
                              R"(password:"",ponPassword:"",ponSerialNum:")" +
                              want + "\",sn:\"" + sn + "\"}";
    check(
        {{"cmd_id=5", sn.empty() ? "" : whole}},
        {{"tevo", "<c><onu><fec_mode>1</fec_mode></onu><ipInfo><onu_mac>" + address + "</onu_mac>"},
         {"omci", "<o><OMCI_MIB><ctcLOIDAuth loid='only'/></OMCI_MIB></o>"},
         {"gpon", "<g><PON><PON_serial_num>" + number + "</PON_serial_num><PON_serial_src>" +
                      source + "</PON_serial_src></PON><PON_passwd>x</PON_passwd></g>"}});
  }
}

TEST_F(Unit, Command5PonAuthenticationIsStored) {
  const std::string set =
      "cmd_id=5&action=1&ponSerialNum=N&ponPassword=P&loid=abc&password=x<z&gpon_loid=GL"
      "&gpon_password=GP&sn=S&fec_mode=";
  const std::string loid = eoam("onu loid abc  x<z");
  const std::string enable = eoam("pon fec_mode enable");
  const std::string stored = "tevo tevo " + kRun;
  for (const auto& [mode, second] : std::map<std::string, std::string>{
           {"0", eoam("pon fec_mode disable")}, {"1", enable}, {"2", loid}}) {
    const std::string changes =
        R"(ABCD0000|N|>pp<|>P<|"gl"|"GL"|"gp"|"GP"|>sn<|>S<|"lp">li<|"x&lt;z">abc<|>fm<|>)";
    check({{set + mode, "0", "gpon gpon omci " + stored + "tevo " + kRun, changes + mode + "<",
            loid + "|" + second}});
  }
  // The same values: some are stored all the same.
  const std::string same = eoam("onu loid li  lp");
  check(
      {{"cmd_id=5&action=1&ponSerialNum=ABCD0000&ponPassword=pp&loid=li&password=lp&gpon_loid=gl"
        "&gpon_password=gp&sn=sn&fec_mode=fm",
        "0", "omci tevo " + kRun + kRun, "", same + "|" + same}});

  // It ends at the first failure that counts; those of the GPON files do not.
  const std::string fec = "<fec_mode>fm</fec_mode>";
  const std::string sn = "<sn>s</sn>";
  const std::string old = "<loid password=\"p\">l</loid>";
  const std::string both = ">s<|>S<|" + old + "|<loid password=\"x&lt;z\">abc</loid>";
  for (const auto& [values, c] : std::map<std::string, Case>{
           {fec + old, {set + "1", "1"}},
           {fec + sn, {set + "1", "1", "tevo ", ">s<|>S<"}},
           {sn + old, {set + "1", "1", stored, both, loid}},
           {fec + sn + old,
            {set + "1", "0", stored + "tevo " + kRun, both + "|>fm<|>1<", loid + "|" + enable}}}) {
    check({c}, {{"tevo", "<t><onu>" + values + "</onu></t>"}, {"omci", "<o/>"}, {"gpon", kAbsent}});
  }
}

TEST_F(Unit, Command8PonCounters) {
  const std::string file = "/sys/devices/platform/epon/pm/allCnt";
  // The keys of the reply, each with the place of its value in the driver's file.
  const Texts keys = split(
      "rxCtrlFrames:5,rxDataFrames:4,rxFcsFrames:1,rxGateFrames:7,rxLongFrames:3,rxReportFrames:6,"
      "rxShortFrames:2,swRegAckFrames:17,swRegDeRegFrames:19,swRegNackFrames:18,"
      "swRegReRegFrams:20,swRxErrorFrames:16,swRxTotalFrames:15,swTxErorFrames:14,"
      "swTxTotalFrames:13,txByteAllow:12,txDataFrames:11,txRegisterAckFrames:9,"
      "txRegisterRequestFrames:8,txReportFrames:10",
      ',');
  const auto expectCounters = [&keys](const Texts& values, const std::string& label) {
    std::string text;
    for (const std::string& key : keys) {
      const std::size_t place = std::stoul(key.substr(key.find(':') + 1));
      text += "," + key.substr(0, key.find(':')) + ":\"" +
              (place <= values.size() ? values[place - 1] : "") + "\"";
    }
    EXPECT_EQ(reply("cmd_id=8&action=1"), json(text.replace(0, 1, "{") + "}")) << label;
  };
  const std::string longValue(100000, '7');
  const std::string page(4091, '7');  // the line ends one byte behind a page
  for (const auto& [text, want] : std::map<std::string, Texts>{
           {run("seq 21 | sed 's/.*/[cnt: &]/'").out, split(run("seq 21").out, '\n')},
           {"no bracket\n 1 2\n", {}},
           {"[\n[]\n[abcd\n[abcde\n[abcdef\n", {"e"}},
           {"[abcd1  2   3]\n", {"1", "2", "3"}},
           {"[abcd1 ]\n[abcd2]\n", {"1", "2"}},
           {"[abcd1]\n[abcd2 3]\n", {"12", "3"}},
           {"[abcd1 2]", {"1", "2"}},
           {"[abcd" + page + "]", {page}},
           {"[abcd" + longValue + " 2]\n", {longValue, "2"}},
           {"[abcd\x01\xff\0 \"\\]\r\n"s, {"\x01\xff\0"s, "\"\\]"}},
       }) {
    writeFile(file, text);
    expectCounters(want, text.substr(0, 80));
  }
  fs::remove(file);
  expectCounters({}, "no file");
  fs::create_directory(file);
  expectCounters({}, "a directory");
}

TEST_F(Unit, FecModeIsAskedOfTheCommandShell) {
  for (const auto& [answer, enabled] :
       std::map<std::string, bool>{{std::string(100000, '\n') + "> FEC Enabled.", true},
                                   {"FEC Disabled\nFEC\nEnabled\n", false}}) {
    fs::remove("/record/commands");
    writeFile("/etc/clish_fec_mode", answer);
    EXPECT_EQ(CliRunner::isFecEnabled(), enabled);
    EXPECT_TRUE(fs::is_empty("/tmp"));
    EXPECT_EQ(readFile("/record/commands"),
              "clish </tmp/TmpFile > /tmp/info_file\0"
              "rm -f /tmp/TmpFile\0rm -f /tmp/info_file\0"s);
  }
  EXPECT_EQ(split(readFile("/record/clish"), '\0'), Texts(2, eoam("show pon fec_mode")));
  fs::create_symlink("/nowhere/at/all", "/tmp/info_file");
  EXPECT_FALSE(CliRunner::isFecEnabled()) << "no file";
  EXPECT_TRUE(exists("/tmp/info_file")) << "nothing to remove";
}

TEST_F(Unit, EponReadersSucceedWhateverIsThere) {
  EponOnuInfo info;
  EponAllCnt counters;
  writeFile("/sys/devices/platform/epon/info/infoEpon", "[abcdA B C D E F]\n");
  for (const char* folder : {"/nothing", "/sys/devices/platform/epon"}) {
    fs::remove_all(folder);
    EXPECT_EQ(EponInfo::getInstance().getOnuInfo(info), 0) << folder;
    EXPECT_EQ(EponInfo::getInstance().getAllCntInfo(counters), 0) << folder;
    EXPECT_EQ(info.state + info.etherType + info.unicastMacAddr + info.txLLId1, "ABDE");
    EXPECT_EQ(info.txLLId2, "F");
  }
}

}  // namespace onu::test
