// Commands 26, 27, 28 and 30: scheduling, queues, storm limit.

#include <array>
#include <filesystem>

#include "config/tpm_data.h"
#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

class Shaping : public SettingsUnit {};

// The reply with the values of eight queues, each a character of `numbers` behind `letter`.
std::string object(const std::string& key, const std::string& letter, const char* numbers) {
  std::string text = "{";
  for (const char queue : std::string("01234567")) {
    text +=
        key + queue + ":\"" + letter + (*numbers == '\0' ? "" : std::string(1, *numbers++)) + "\",";
  }
  text.back() = '}';
  return text;
}

TEST_F(Shaping, IsRead) {
  EXPECT_EQ(reply("cmd_id=27"), json(object("queue", "", "11224488"))) << "factory file";
  const std::string transmitted = object("size", "s", "01234567");
  for (const auto& [query, want, without] : std::vector<std::array<std::string, 3>>{
           {"cmd_id=26", "{algo_mode:\"m\"}", "error"},
           {"cmd_id=27&action=0", object("queue", "w", "01234567"), "error"},
           {"cmd_id=28&voq_dir=0", object("size", "r", "01234567"), "error"},
           {"cmd_id=28", transmitted, "error"},
           {"cmd_id=28&voq_dir=", transmitted, "error"},
           {"cmd_id=28&voq_dir=us", transmitted, "error"},
           {"cmd_id=28&voq_dir=00", transmitted, "error"},
           {"cmd_id=30", "[{bc_mode:\"b0\",rate:\"t0\"}]", "[]"},
       }) {
    check({"", query, json(want), ""});
    checkWithoutValues(query, json(without));
  }
}

std::string transmit(const std::string& modules) {
  return "<t><port_init><tx_module_parameters>" + modules +
         "</tx_module_parameters></port_init></t>";
}

TEST_F(Shaping, QueuesThatAreMissing) {
  const TpmData& data = TpmData::getInstance();
  std::string method = "kept";
  QueueTexts texts;
  texts.fill("kept");
  writeFile(kTpm,
            transmit("<tx_mod/><tx_mod/><tx_mod><queue_map><queue weight='&#10;'/><o/><queue/>"
                     "</queue_map></tx_mod>"));
  EXPECT_EQ(data.getQueueWeights(texts), 0);
  EXPECT_EQ(texts[0] + texts[1] + texts[7], "\nkeptkept");
  EXPECT_EQ(data.getSchedMethod(method), -1);
  EXPECT_EQ(method, "kept");
  EXPECT_EQ(reply("cmd_id=27&action=1&que_id=1&usr_pri=2"), json("0")) << "added to its queue";
  const std::string two = transmit(
      "<tx_mod></tx_mod><tx_mod></tx_mod><tx_mod><queue_map><queue weight=\"&#xA;\"></queue><o></o>"
      "<queue weight=\"2\"></queue></queue_map></tx_mod>");
  EXPECT_EQ(readFile(kTpm), two);

  // One module too few: nothing is found, and the method is stored nowhere.
  const std::string queue = "<queue_map><queue weight=\"1\"></queue></queue_map>";
  const std::string few = transmit("<tx_mod></tx_mod><tx_mod>" + queue + "</tx_mod>");
  writeFile(kTpm, few + "<!-- -->");
  EXPECT_EQ(reply("cmd_id=27"), json(object("queue", "", "")));
  EXPECT_EQ(reply("cmd_id=27&action=1&que_id=0&usr_pri=2"), json("1"));
  EXPECT_EQ(readFile(kTpm), few + "<!-- -->");
  EXPECT_EQ(data.setSchedMethod("1"), 0);
  EXPECT_EQ(readFile(kTpm), few) << "but the file is written";
  EXPECT_EQ(data.setFlowControl("1"), -1);
  std::filesystem::remove(kTpm);
  EXPECT_EQ(data.setSchedMethod("1"), -1);
  writeFile(kTpm, "<t><flow_control/></t>");
  EXPECT_EQ(data.setFlowControl("1"), 0);
  EXPECT_EQ(readFile(kTpm), "<t><flow_control/></t>");
}

TEST_F(Shaping, QueuesAreStored) {
  const OddText odd;
  struct Command {
    const char* query;
    const char* parameter;
    std::string value;  // in the file, without the number of its queue
  };
  for (const auto& [query, parameter, value] :
       {Command{"cmd_id=27&action=1&que_id=", "&usr_pri=", "w"},
        Command{"cmd_id=28&action=1&voq_dir=1&voq_id=", "&voq_thresh=", "s"},
        Command{"cmd_id=28&action=1&voq_dir=0&voq_id=", "&voq_thresh=", "r"}}) {
    for (const auto& [number, queue] : std::map<std::string, std::string>{
             {"0", "0"}, {"7", "7"}, {"9", "9"}, {"abc", "0"}, {"", "0"}, {"3<\"\n", "3"}}) {
      check({query, query + number + parameter + odd.text, json("0"), "tpm ",
             changed("\"" + value + queue, "\"" + odd.asAttribute)});
    }
    for (const char* number : {"10", "-1", "4294967297", "99999999999999999999", "-9999999999"}) {
      check({number, std::string(query) + number + parameter + "5", json("1"), ""});
    }
    check({"same value", query + std::string("4") + parameter + value + "4", json("0"), "tpm "});
    checkWithoutValues(std::string(query) + "0" + parameter + "1", json("1"));
  }
  check({"method", "cmd_id=26&action=1&algo_mode=" + odd.text, json("0"), "tpm ",
         changed("\"m\"", "\"" + odd.asAttribute + "\"")});
  check({"same method", "cmd_id=26&action=1&algo_mode=m", json("0"), "tpm "});
  checkWithoutValues("cmd_id=26&action=1&algo_mode=1", json("0"));
  for (const char* command : {"26", "27", "28", "30"}) {
    check({command, std::string("cmd_id=") + command + "&action=2&bs=0&voq_dir=0", "", ""});
  }
}

// The commands of one limit, in both directions.
std::vector<std::string> limit(const std::string& words, const std::string& file) {
  std::vector<std::string> commands;
  for (const char* direction : {"us", "ds"}) {
    commands.push_back(std::string("echo 0 ") + direction + " UNI_ANY " + words +
                       " 1536 > /sys/devices/platform/tpm/cfg_traffic/" + file);
  }
  return commands;
}

TEST_F(Shaping, StormLimitIsAppliedThenStored) {
  const OddText odd;
  const std::string big(65536, '6');
  const std::string queueFile = "rate_limit_queue_set";
  const std::string interfaceFile = "rate_limit_if_set";
  const std::string toQueue = "commands rate_limit_queue_set commands rate_limit_queue_set ";
  const std::string toInterface = "commands rate_limit_if_set commands rate_limit_if_set ";
  std::vector<std::string> off = limit("1 1048568", queueFile);
  for (const auto& more : {limit("7 1048568", queueFile), limit("1048568", interfaceFile)}) {
    off.insert(off.end(), more.begin(), more.end());
  }
  const auto set = [](const std::string& values) { return "cmd_id=30&action=1" + values; };
  const auto port = [](const std::string& mode, const std::string& rate) {
    return changed("\"b0\"", "\"" + mode + "\"", "\"t0\"", "\"" + rate + "\"");
  };
  for (const SettingsCase& c : std::vector<SettingsCase>{
           {"broadcast", set("&bs=0&bs_thresh=512"), json("0"), toQueue + "tevo ", port("0", "512"),
            limit("1 512", queueFile)},
           {"multicast", set("&bs=1&bs_thresh=" + big), json("0"), toQueue + "tevo ",
            port("1", big), limit("7 " + big, queueFile)},
           {"interface", set("&bs=2&bs_thresh=%20\\"), json("0"), toInterface + "tevo ",
            port("2", "%20\\"), limit(" %20\\", interfaceFile)},
           {"off", set("&bs=3&bs_thresh=512"), json("0"), toQueue + toQueue + toInterface + "tevo ",
            port("3", "512"), off},
           {"no rate", set("&bs=0"), json("0"), toQueue + "tevo ", port("0", "t0"),
            limit("1 ", queueFile)},
           {"a line feed, printed by the shell", set("&bs=0&bs_thresh=1\n2"),
            "0 us UNI_ANY 1 1\n0 ds UNI_ANY 1 1\n" + json("0"), toQueue + "tevo ",
            port("0", "1&#xA;2"), limit("1 1\n2", queueFile)},
           {"no shell text", set("&bs=1&bs_thresh=("), json("0"), "commands tevo ", port("1", "("),
            limit("7 (", queueFile)},
           {"other mode", set("&bs=5&bs_thresh=" + odd.text), json("0"), "tevo ",
            port("5", odd.asAttribute)},
           {"arrives", set("&bs=2&bs_thresh=77"), json("0"), toInterface + "tevo ", port("2", "77"),
            limit(" 77", interfaceFile)},
           {"almost a mode", set("&bs=00&bs_thresh=5"), json("0"), "tevo ", port("00", "5")},
       }) {
    check(c);
  }
  EXPECT_EQ(readFile("/sys/devices/platform/tpm/cfg_traffic/rate_limit_if_set"),
            "0 ds UNI_ANY 77 1536\n");
  checkWithoutValues(set("&bs=1&bs_thresh=5"), json("1"));
  EXPECT_EQ(cgi(get(set("&bs=1&bs_thresh=5"))).commands, limit("7 5", queueFile));
}

}  // namespace
}  // namespace onu::test
