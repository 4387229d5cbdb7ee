#include "config/profile_data.h"

#include <gtest/gtest.h>

#include "config/profile_values.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

using namespace std::string_literals;

const ProfileData& profile() { return ProfileData::getInstance(); }

std::string all(std::string (*take)(std::string_view), const std::vector<std::string>& values) {
  std::string texts;
  for (const std::string& value : values) {
    texts += take(value) + ",";
  }
  return texts;
}

TEST(ProfileValue, Conversions) {
  EXPECT_EQ(all(withoutPrefix, {"0x1234", "0x", "0"}), "1234,,,");
  EXPECT_EQ(all(chipDate, {"0x130514", "0xFFfEaBcc", "0x1g05-1", "0x 1x2+3", "0x130", ""}),
            "2019/05/20,2255/254/171,2001/05/00,2000/00/00,2019/00/00,2000/00/00,");
  EXPECT_EQ(all(dottedVersion, {"0x0102030", "0x", "0", "0x" + std::string(21, '1')}),
            "01.02.03.0,,,11.11.11.11.11.11.11.11.11.11.1,");
  EXPECT_EQ(dottedVersion(std::string(1 << 20, '2')), "22.22.22.22.22.22.22.22.22.22.2");
  EXPECT_EQ(all(onuTypeName, {"0", "1", "2", "3", "4", " 05x", "6", "7", "8", "-1", "HGU"}),
            "SFU,HGU,SBU,CBU,MDU,MTU,1FE+1POTS SFU,Mixed HGU,8,-1,SFU,");
  EXPECT_EQ(onuTypeName("4294967296"), "4294967296");
}

class Profile : public Unit {};

// The four results, then what tells the chains apart, over fields that hold "-".
std::string readAll() {
  OnuProfile p{{"-", "-", "-", "-"}, {"-", "-", "-", "-"}, "-", {}};
  p.capability.feBitmapMsb = p.capability.onuType = "-";
  std::string text;
  for (int result :
       {profile().getVendorInfo(p.vendor), profile().getChipInfo(p.chip),
        profile().getFirmwareVersion(p.firmwareVersion), profile().getCapability(p.capability)}) {
    text += std::to_string(result);
  }
  return text + "," + p.vendor.hwVersion + "," + p.vendor.swVersion + "," + p.chip.model + "," +
         p.firmwareVersion + "," + p.capability.feBitmapMsb + "," + p.capability.onuType;
}

TEST_F(Profile, Chains) {
  EXPECT_EQ(readAll(), "0000,V1.2,V2.0.14,6510,02.00.0e,0x0e,SFU");
  std::string many;
  for (int i = 0; i < 20000; ++i) {
    many += "<attrib name='filler' value='" + std::to_string(i) + "'/>";
  }
  const char* const untouched = "-1-1-1-1,-,-,-,-,-,-";
  for (const auto& [content, want] : std::vector<std::pair<std::string, const char*>>{
           {"", untouched},
           {"\0\xff\xfe<"s, untouched},
           {"<p><Vendor<Capability>", untouched},
           {"<p><Vendor/><Capability/>", "0000,-,-,-,-,-,-"},
           {"<p><Vendor><attrib name='HW Version' value='1'/><attrib name='SW version '/></Vendor>",
            "000-1,-,-,-,,-,-"},
           // An entry without value, and one without name, end the chain; "-" is type 0 then.
           {"<p><Vendor><attrib name='HW version' value='1'/><attrib name='SW version'/>"
            "<attrib name='Firmware version' value='0x01'/></Vendor>"
            "<Capability><attrib value='4'/><attrib name='ONU type' value='4'/></Capability>",
            "0000,1,-,-,,-,SFU"},
           {"<p><Vendor><attrib name='Chip model' value='0x1'/><x/>"
            "<attrib value='' name='Chip model'/></Vendor>",
            "000-1,-,-,,,-,-"},
           {"<p><Vendor>" + many + "<attrib name='SW version' value='last'/></Vendor>",
            "000-1,-,last,-,,-,-"},
       }) {
    writeFile(kProfilePath, content);
    EXPECT_EQ(readAll(), want) << content.substr(0, 200);
  }
}

// What the commands that use the eOAM settings leave open.
TEST_F(Profile, EoamSettings) {
  const std::string before =
      "<e><ONU_MULTICAST><port/><port groupnum='9'/></ONU_MULTICAST><ONU_LOOPDETECT>"
      R"(<port loopdetect="1">7</port><port></port></ONU_LOOPDETECT></e>)";
  const std::map<std::string, std::string> ports = {{"", "0 1"},    {"0", "0 1"},
                                                    {"1x", "0 -"},  {"2", "-1 -"},
                                                    {"-1", "-1 -"}, {"4294967296", "-1 -"}};
  for (const auto& [number, want] : ports) {
    writeFile(kEoamSettingsPath, before);
    std::string found = "-";
    const int result = profile().getLoopDetect(number, found);
    EXPECT_EQ(std::to_string(result) + " " + found, want) << number;
    EXPECT_EQ(profile().setLoopDetect(number, "1"), result) << number;
    EXPECT_EQ(readFile(kEoamSettingsPath) == before, number != "1x") << number;
  }
  std::string text = "-";
  EXPECT_EQ(profile().getMulticastGroupNum(text), -1);
  EXPECT_EQ(profile().getMulticastSwitch(text), -1);
  EXPECT_EQ(text, "-");
}

}  // namespace
}  // namespace onu::test
