// Action 0 of the commands that read settings.

#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

// An object with the values of eight queues, each `letter` and its number.
std::string queues(const std::string& key, const std::string& letter) {
  std::string text = "{";
  for (const char queue : std::string("01234567")) {
    text += key + queue + ":\"" + (letter.empty() ? "" : letter + queue) + "\",";
  }
  text.back() = '}';
  return text;
}

std::string withMac(const std::string& mac) {
  return "<c><ipInfo><onu_mac>" + mac + "</onu_mac></ipInfo></c>";
}

using Reading = SettingsUnit;

TEST_F(Reading, WithAndWithoutValues) {
  struct Case {
    std::string query, with, without;
  };
  for (const Case& c : {
           Case{"cmd_id=4&action=1&port=1",
                R"([{VlanInfo_mode:"v0",VlanInfo_serial:"l0",admin_status:"1",auto_neg:"a0",)"
                R"(default_vid:"d0",fast_leave:"0",link:"1",link_rate:"m0",loop_detect:"0",)"
                R"(max_igmp_group:"32",mc_mode:"a<"b",mc_tag_oper:"0",pause:"f0"}])",
                R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
                R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
                R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])"},
           {"cmd_id=6",
            R"({cur_ip:"192.168.1.1",cur_netmask:"255.255.255.0",ip:"192.168.1.1",)"
            R"(netmask:"255.255.255.0"})",
            R"({cur_ip:"",cur_netmask:"",ip:"",netmask:""})"},
           {"cmd_id=14&port=1", R"([{loop_detect:"0"}])", R"([{loop_detect:"1"}])"},
           {"cmd_id=16", R"({ipv4DsMtu:"ds",ipv4UsMtu:"us",ipv4pppoeUsMtu:"po"})",
            R"({ipv4DsMtu:"",ipv4UsMtu:"",ipv4pppoeUsMtu:""})"},
           {"cmd_id=17", R"({mc_mode:"a<"b"})", R"({mc_mode:""})"},
           {"cmd_id=22&portId=1", R"([{def_vid:"d0",mode:"v0",portId:"0",vidSerial:"l0"}])", "[]"},
           {"cmd_id=23",
            R"([ {auto:"a0",flow_control:"f0",link:"net_up",mode_max:"x0",phy:"p0",port_id:"0",)"
            R"(work_mode:"m0"},{auto:"",flow_control:"",link:"net_up",mode_max:"",phy:"",)"
            R"(port_id:"1",work_mode:"<"}])",
            "[]"},
           {"cmd_id=24", R"({iso:"1"})", R"({iso:"0"})"},
           {"cmd_id=25", R"({aging_time:"300"})", "1"},
           {"cmd_id=26", R"({algo_mode:"m"})", "error"},
           {"cmd_id=27", queues("queue", "w"), "error"},
           {"cmd_id=28&voq_dir=0", queues("size", "r"), "error"},
           {"cmd_id=28&voq_dir=00", queues("size", "s"), "error"},
           {"cmd_id=30&action=0", R"([{bc_mode:"b0",rate:"t0"}])", "[]"},
       }) {
    check({{c.query, json(c.with)}});
    checkWithoutValues({{c.query, json(c.without)}});
  }
  check({{"cmd_id=5",
          json(R"({ctc_switch:"1",cur_mac:"02:10:20:30:40:50",fec_mode:"fm",gpon_loid:"gl",)"
               R"(gpon_password:"gp",loid:"li",password:"lp",ponPassword:"pp",)"
               R"(ponSerialNum:"ABCD20304050",sn:"021020304050"})")}});
}

TEST_F(Reading, IncompleteFiles) {
  check({{"cmd_id=22", json("[]")}},
        {{"tevo", "<c><vlan><port default_vid='1'>0</port><port mode='1'>1</port></vlan></c>"}});
  check({{"cmd_id=25", json("{aging_time:\"8\"}")}},
        {{"tevo",
          "<c><mac_aging_time><eth_port>0</eth_port><eth_port time='9'>1</eth_port>"
          "<eth_port time='8'>0</eth_port><eth_port time='7'>0</eth_port></mac_aging_time></c>"}});
  check({{"cmd_id=27", json(queues("queue", ""))}},
        {{"tpm",
          "<t><port_init><tx_module_parameters><tx_mod/><tx_mod><queue_map><queue weight='1'/>"
          "</queue_map></tx_mod></tx_module_parameters></port_init></t>"}});
  // Without its ability the mode is not read.
  check({{"cmd_id=5",
          json(R"({ctc_switch:"1",cur_mac:"00:50:43:11:22:33",fec_mode:"",gpon_loid:"only",)"
               R"(gpon_password:"",loid:"",password:"",ponPassword:"",ponSerialNum:"",)"
               R"(sn:"005043112233"})")}},
        {{"tevo",
          "<c><ipInfo><onu_mac>00:50:43:11:22:33</onu_mac></ipInfo><onu><fec_mode>1</fec_mode>"
          "</onu></c>"},
         {"omci", "<o><OMCI_MIB><ctcLOIDAuth loid='only'/></OMCI_MIB></o>"},
         {"gpon", "<g><PON/><PON_passwd>x</PON_passwd></g>"}});
}

TEST_F(Reading, PonSerialNumber) {
  const std::string mac = "00:50:43:11:22:33";
  const std::string sn = "\",sn:\"005043112233\"}\n";
  struct Case {
    const char *number, *source;
    std::string mac, want;  // the end of the reply
  };
  for (const Case& c : {
           Case{"ABCD0000", "0", mac, "ponSerialNum:\"ABCD0000" + sn},
           {"AB", "1", mac, "ponSerialNum:\"AB43112233" + sn},
           {"ABCD", "1", "0123456789abcd", "ponSerialNum:\"ABCD679acd\",sn:\"0134679acd\"}\n"},
           {"ABCD", "0", "0123456789abc", ""},
       }) {
    writeFile(kSettings, withMac(c.mac));
    writeFile(path("gpon"), std::string("<g><PON><PON_serial_num>") + c.number +
                                "</PON_serial_num><PON_serial_src>" + c.source +
                                "</PON_serial_src></PON></g>");
    const std::string out = reply("cmd_id=5");
    EXPECT_EQ(out.substr(std::min(out.find("ponSerialNum"), out.size())), c.want) << c.mac;
  }
}

TEST_F(Reading, UnitInformation) {
  check({{"cmd_id=2&action=1&port=1",
          json(R"({afec_ability:"fa",app_ver:"S"1",capabi_battery_backup:"0",)"
               R"(capabi_ds_que_num:"4",capabi_fe_bitmap:"0x0e",capabi_fe_num:"3",)"
               R"(capabi_ge_bitmap:"0x01",capabi_ge_num:"1",capabi_max_ds_queue:"4",)"
               R"(capabi_max_us_queue:"8",capabi_pots_num:"0",capabi_service_supported:"GE",)"
               R"(capabi_us_que_num:"8",chipset_chip_model:"6510",chipset_ic_ver:"2019/05/20",)"
               R"(chipset_rev:"a2",chipset_vendor_id:"5443",fec_mode:"fm",llid:"0x0005",)"
               R"(onu_fm_ver:"02.00.0e",onu_hw_ver:"V1.2",onu_id:"021020304050",)"
               R"(onu_ip:"192.168.1.1",onu_mac:"02:10:20:30:40:50",onu_model:"T143",)"
               R"(onu_netmask:"255.255.255.0",onu_soft_ver:"V2.0.14",onu_vendor_id:"TEVO",)"
               R"(reg_st:"1",type:"M"})")}});
}

TEST_F(Reading, EndsWithoutReplyAtAShortMac) {
  writeFile(kSettings, withMac("0011223344556"));
  const Outcome outcome = cgi(get("cmd_id=2"));
  EXPECT_EQ(outcome.out + outcome.err.substr(0, 9), "onu-cgi: ");
  EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
  EXPECT_EQ(outcome.status, 1);
  checkWithoutValues({{"cmd_id=2", ""}, {"cmd_id=5", ""}});
}

// What the profile has in hexadecimal, with no length or digit to rely on.
TEST_F(Reading, ProfileValues) {
  struct Case {
    std::string value;
    const char *date, *bare, *version;
  };
  for (const Case& c : {
           Case{"0x130514", "2019/05/20", "130514", "13.05.14"},
           {"0xFFfEaBcc", "2255/254/171", "FFfEaBcc", "FF.fE.aB.cc"},
           {"0x1g05-1", "2001/05/00", "1g05-1", "1g.05.-1"},
           {"0x130", "2019/00/00", "130", "13.0"},
           {"0", "2000/00/00", "", ""},
           {"0x1111111111111111111111", "2017/17/17", "1111111111111111111111",
            "11.11.11.11.11.11.11.11.11.11.1"},
       }) {
    std::string profile = "<p><Vendor>";
    for (const char* name : {"Chip version", "Chip revision", "Firmware version"}) {
      profile += std::string("<attrib name='") + name + "' value='" + c.value + "'/>";
    }
    // An entry without a value, and one without a name, end their groups.
    writeFile(
        kProfile,
        profile +
            "<attrib name='SW version'/><attrib name='HW version' value='x'/>"
            "</Vendor><Capability><attrib name='Battery backup support capability' value='1'/>"
            "<attrib value='0'/><attrib name='POTS port number' value='2'/>");
    const std::string out = reply("cmd_id=2");
    for (const std::string& want :
         {std::string("battery_backup:\"1\""), std::string("pots_num:\"\""),
          std::string("ic_ver:\"") + c.date + "\",chipset_rev:\"" + c.bare + "\"",
          std::string("fm_ver:\"") + c.version + "\",onu_hw_ver:\"\""}) {
      EXPECT_NE(out.find(want), std::string::npos) << want << " in " << out;
    }
  }
}

}  // namespace
}  // namespace onu::test
