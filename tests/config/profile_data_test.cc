#include "config/profile_data.h"

#include <gtest/gtest.h>

#include "config/profile_values.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

const ProfileData& profile() { return ProfileData::getInstance(); }

void expectTexts(std::string (*take)(std::string_view value),
                 const std::vector<std::pair<std::string, std::string>>& cases) {
  for (const auto& [value, want] : cases) {
    EXPECT_EQ(take(value), want) << value.substr(0, 100);
  }
}

TEST(ProfileValue, Conversions) {
  expectTexts(withoutPrefix, {{"0x1234", "1234"}, {"0x", ""}, {"0", ""}});
  expectTexts(chipDate, {{"0x130514", "2019/05/20"},
                         {"0xFFfEaBcc", "2255/254/171"},
                         {"0x1g05-1", "2001/05/00"},
                         {"0x 1x2+3", "2000/00/00"},
                         {"0x130", "2019/00/00"},
                         {"", "2000/00/00"}});
  expectTexts(dottedVersion, {{"0x010203", "01.02.03"},
                              {"0x0102030", "01.02.03.0"},
                              {"0x", ""},
                              {"0", ""},
                              {"0x" + std::string(21, '1'), "11.11.11.11.11.11.11.11.11.11.1"},
                              {std::string(1 << 20, '2'), "22.22.22.22.22.22.22.22.22.22.2"}});
  expectTexts(onuTypeName,
              {{" 05x", "MTU"}, {"-1", "-1"}, {"4294967296", "4294967296"}, {"HGU", "SFU"}});
  std::string types;
  for (int type = 0; type <= 8; ++type) {
    types += onuTypeName(std::to_string(type)) + ",";
  }
  EXPECT_EQ(types, "SFU,HGU,SBU,CBU,MDU,MTU,1FE+1POTS SFU,Mixed HGU,8,");
}

class Profile : public Unit {};

// The four results, then everything in the profile over fields that hold "-".
std::string readAll() {
  VendorInfo v{"-", "-", "-", "-"};
  ChipInfo c{"-", "-", "-", "-"};
  CapabilityInfo a{"-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-"};
  std::string version = "-";
  std::string all = std::to_string(profile().getVendorInfo(v));
  all += std::to_string(profile().getChipInfo(c));
  all += std::to_string(profile().getFirmwareVersion(version));
  all += std::to_string(profile().getCapability(a));
  for (const std::string& text :
       {v.vendor,      v.model,         v.hwVersion, v.swVersion, c.chipId,     c.revision,
        c.icDate,      c.model,         version,     a.geNum,     a.geBitmap,   a.feNum,
        a.feBitmapLsb, a.feBitmapMsb,   a.potsNum,   a.usQueNum,  a.maxUsQueue, a.dsQueNum,
        a.maxDsQueue,  a.batteryBackup, a.onuType}) {
    all += "," + text;
  }
  return all;
}

TEST_F(Profile, Chains) {
  EXPECT_EQ(readAll(),
            "0000,TEVO,T143,V1.2,V2.0.14,5443,a2,2019/05/20,6510,02.00.0e,1,0x01,3,0x0e,0x0e,0,8,8,"
            "4,4,0,SFU");
  std::string many = "<Vendor>";
  for (int i = 0; i < 20000; ++i) {
    many += "<attrib name='filler' value='" + std::to_string(i) + "'/>";
  }
  const char* const untouched = "-1-1-1-1,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-";
  struct Case {
    std::string content;
    const char* want;
  };
  for (const Case& c : {
           Case{"", untouched},
           {std::string("\0\xff\xfe<", 4), untouched},
           {"<p><Vendor<Capability>", untouched},
           {"<p><Vendor/><Capability/>", "0000,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-"},
           {"<p><Vendor><attrib name='HW Version' value='1'/><attrib name='SW version '/></Vendor>",
            "000-1,-,-,-,-,-,-,-,-,,-,-,-,-,-,-,-,-,-,-,-,-"},
           // An entry without value, and one without name, end the chain; "-" is type 0 then.
           {"<p><Vendor><attrib name='HW version' value='1'/><attrib name='SW version'/>"
            "<attrib name='Firmware version' value='0x01'/></Vendor>"
            "<Capability><attrib value='4'/><attrib name='ONU type' value='4'/></Capability>",
            "0000,-,-,1,-,-,-,-,-,,-,-,-,-,-,-,-,-,-,-,-,SFU"},
           {"<p><Vendor><attrib name='Chip model' value='0x1'/><x/>"
            "<attrib value='' name='Chip model'/></Vendor>",
            "000-1,-,-,-,-,-,-,-,,,-,-,-,-,-,-,-,-,-,-,-,-"},
           {"<p>" + many + "<attrib name='SW version' value='last'/></Vendor>",
            "000-1,-,-,-,last,-,-,-,-,,-,-,-,-,-,-,-,-,-,-,-,-"},
       }) {
    writeFile(kProfilePath, c.content);
    EXPECT_EQ(readAll(), c.want) << c.content.substr(0, 200);
  }
}

std::string eoam(const std::string& mode, const std::string& port0, const std::string& port1) {
  return "<e><ONU_MULTICAST><oam_multicast_switch>" + mode +
         "</oam_multicast_switch><port groupnum=\"8\"></port><port></port></ONU_MULTICAST>"
         "<ONU_LOOPDETECT><port" +
         port0 + ">7</port><port" + port1 + "></port></ONU_LOOPDETECT></e>";
}

TEST_F(Profile, EoamSettings) {
  const std::string one = " loopdetect=\"1\"";
  const std::string two = " loopdetect=\"2\"";
  const std::string before = eoam("0", one, "") + "<!-- lost in any write -->";
  struct Case {
    const char* port;
    const char* mode;
    int result;
    const char* found;  // before the change
    std::string after;
  };
  for (const Case& c : {
           Case{"0", "2", 0, "1", eoam("0", two, "")},
           {"0", "1", 0, "1", before},
           {"", "2", 0, "1", eoam("0", two, "")},
           {"1x", "1", 0, "-", eoam("0", one, one)},
           {"2", "1", -1, "-", before},
           {"-1", "2", -1, "-", before},
           {"4294967296", "2", -1, "-", before},
       }) {
    writeFile(kEoamSettingsPath, before);
    std::string found = "-";
    EXPECT_EQ(profile().getLoopDetect(c.port, found), c.result) << c.port;
    EXPECT_EQ(found, c.found) << c.port;
    EXPECT_EQ(profile().setLoopDetect(c.port, c.mode), c.result) << c.port;
    EXPECT_EQ(readFile(kEoamSettingsPath), c.after) << c.port;
  }
  writeFile(kEoamSettingsPath, before);
  EXPECT_EQ(profile().setMulticastSwitch("0"), 0);
  EXPECT_EQ(readFile(kEoamSettingsPath), before);
  EXPECT_EQ(profile().setMulticastSwitch("<"), 0);
  EXPECT_EQ(readFile(kEoamSettingsPath), eoam("&lt;", one, ""));
  std::string text;
  EXPECT_EQ(profile().getMulticastSwitch(text), 0);
  EXPECT_EQ(text, "<");
  EXPECT_EQ(profile().getMulticastGroupNum(text), 0);
  EXPECT_EQ(text, "8");
  const std::string poor = "<e><ONU_MULTICAST><port/><port groupnum='9'/></ONU_MULTICAST></e>";
  writeFile(kEoamSettingsPath, poor);
  EXPECT_EQ(profile().getMulticastGroupNum(text), -1);
  EXPECT_EQ(profile().getMulticastSwitch(text), -1);
  EXPECT_EQ(profile().setMulticastSwitch("1"), -1);
  EXPECT_EQ(text, "8");
  EXPECT_EQ(readFile(kEoamSettingsPath), poor);
}

}  // namespace
}  // namespace onu::test
