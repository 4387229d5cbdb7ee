// Command 5.

#include "tests/support/commands.h"

namespace onu::test {

TEST_F(Commands, PonAuthenticationIsRead) {
  check({{"cmd_id=5", R"({ctc_switch:"1",cur_mac:"02:10:20:30:40:50",fec_mode:"fm",gpon_loid:"gl",)"
                      R"(gpon_password:"gp",loid:"li",password:"lp",ponPassword:"pp",)"
                      R"(ponSerialNum:"ABCD20304050",sn:"021020304050"})"},
         {"cmd_id=5&action=2", ""}});
  // Without its ability the mode is not read.
  check({{"cmd_id=5", R"({ctc_switch:"1",cur_mac:"00:50:43:11:22:33",fec_mode:"",gpon_loid:"only",)"
                      R"(gpon_password:"",loid:"",password:"",ponPassword:"",ponSerialNum:"",)"
                      R"(sn:"005043112233"})"}},
        {{"tevo",
          "<c><ipInfo><onu_mac>00:50:43:11:22:33</onu_mac></ipInfo><onu><fec_mode>1</fec_mode>"
          "</onu></c>"},
         {"omci", "<o><OMCI_MIB><ctcLOIDAuth loid='only'/></OMCI_MIB></o>"},
         {"gpon", "<g><PON/><PON_passwd>x</PON_passwd></g>"}});
  checkWithoutValues({{"cmd_id=5", ""}});

  struct SerialNumber {
    const char *number, *source;
    std::string mac, want;  // the end of the reply
  };
  const std::string mac = "00:50:43:11:22:33";
  const std::string sn = "\",sn:\"005043112233\"}\n";
  for (const SerialNumber& c : {
           SerialNumber{"ABCD0000", "0", mac, "ponSerialNum:\"ABCD0000" + sn},
           {"AB", "1", mac, "ponSerialNum:\"AB43112233" + sn},
           {"ABCD", "1", "0123456789abcd", "ponSerialNum:\"ABCD679acd\",sn:\"0134679acd\"}\n"},
           {"ABCD", "0", "0123456789abc", ""},
       }) {
    writeFile(kSettings, "<c><ipInfo><onu_mac>" + c.mac + "</onu_mac></ipInfo></c>");
    writeFile(path("gpon"), std::string("<g><PON><PON_serial_num>") + c.number +
                                "</PON_serial_num><PON_serial_src>" + c.source +
                                "</PON_serial_src></PON></g>");
    const std::string out = reply("cmd_id=5");
    EXPECT_EQ(out.substr(std::min(out.find("ponSerialNum"), out.size())), c.want) << c.mac;
  }
}

TEST_F(Commands, PonAuthenticationIsStored) {
  checkWithoutValues({{"cmd_id=5&action=1&loid=l&password=p", "1"}});
  const std::string set =
      "cmd_id=5&action=1&ponSerialNum=N&ponPassword=P&loid=abc&password=x<z&gpon_loid=GL"
      "&gpon_password=GP&sn=S&fec_mode=";
  const std::string loid = eoam("onu loid abc  x<z");
  const std::string enable = eoam("pon fec_mode enable");
  for (const auto& [mode, second] : std::map<std::string, std::string>{
           {"0", eoam("pon fec_mode disable")}, {"1", enable}, {"2", loid}}) {
    const std::string changes =
        R"(ABCD0000|N|>pp<|>P<|"gl"|"GL"|"gp"|"GP"|>sn<|>S<|"lp">li<|"x&lt;z">abc<|>fm<|>)";
    check({{set + mode, "0", "gpon gpon omci tevo tevo " + kRun + "tevo " + kRun,
            changes + mode + "<", loid + "|" + second}});
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
  const std::string oldLoid = "<loid password=\"p\">l</loid>";
  const std::string newSn = ">s<|>S<";
  const std::string newLoid = newSn + "|" + oldLoid + "|<loid password=\"x&lt;z\">abc</loid>";
  for (const auto& [values, c] : std::map<std::string, Case>{
           {fec + oldLoid, {set + "1", "1"}},
           {fec + sn, {set + "1", "1", "tevo ", newSn}},
           {sn + oldLoid, {set + "1", "1", "tevo tevo " + kRun, newLoid, loid}},
           {fec + sn + oldLoid,
            {set + "1", "0", "tevo tevo " + kRun + "tevo " + kRun, newLoid + "|>fm<|>1<",
             loid + "|" + enable}}}) {
    check({c}, {{"tevo", "<t><onu>" + values + "</onu></t>"}, {"omci", "<o/>"}, {"gpon", kAbsent}});
  }
}

}  // namespace onu::test
