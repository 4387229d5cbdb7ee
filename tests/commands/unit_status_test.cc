#include <filesystem>

#include "tests/support/unit.h"

namespace onu::test {

namespace fs = std::filesystem;

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
  const std::string named =
      "onu-cgi: command 2: value of onu_mac is shorter than 14 characters: it has 13\n";
  EXPECT_EQ((outcome.out + outcome.err).substr(0, named.size()), named);
  EXPECT_EQ(outcome.status, 1);
  writeFile(kSettings, "<c><ipInfo><onu_mac>00112233445566</onu_mac></ipInfo></c>");
  EXPECT_EQ(cgi(get("cmd_id=2")).err, "") << "long enough";
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
           {"0xFFfEABcc", "2255/254/171", "FFfEABcc", "FF.fE.AB.cc",
            "x\n[abcdactive B C D E F G]\n", "E", "0"},
           {"0x190a29", "2025/10/41", "190a29", "19.0a.29",
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

TEST_F(Unit, Command4PortStatus) {
  checkWithoutValues(
      {{"cmd_id=4", R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
                    R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
                    R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])"}});
  check({{"cmd_id=4&action=1&port=1",
          R"([{VlanInfo_mode:"v0",VlanInfo_serial:"l0",admin_status:"1",auto_neg:"a0",)"
          R"(default_vid:"d0",fast_leave:"0",link:"1",link_rate:"m0",loop_detect:"0",)"
          R"(max_igmp_group:"32",mc_mode:"a<"b",mc_tag_oper:"0",pause:"f0"}])"}});
}

}  // namespace onu::test
