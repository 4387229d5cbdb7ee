#include "tests/support/unit.h"

namespace onu::test {

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

}  // namespace onu::test
