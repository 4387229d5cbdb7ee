// Commands 26, 27, 28 and 30: scheduling, queues, storm limit.

#include "tests/support/settings_unit.h"

namespace onu::test {
namespace {

using Shaping = SettingsUnit;

const OddText kOdd;
const std::string kOk = json("0");

TEST_F(Shaping, QueuesAreStored) {
  struct Command {
    std::string query;
    std::string parameter;
    std::string value;  // in the file, without the number of its queue
  };
  for (const auto& [query, parameter, value] :
       {Command{"cmd_id=27&action=1&que_id=", "&usr_pri=", "w"},
        Command{"cmd_id=28&action=1&voq_dir=1&voq_id=", "&voq_thresh=", "s"},
        Command{"cmd_id=28&action=1&voq_dir=0&voq_id=", "&voq_thresh=", "r"}}) {
    for (const auto& [number, queue] : std::map<std::string, std::string>{
             {"0", "0"}, {"7", "7"}, {"9", "9"}, {"abc", "0"}, {"3<\"\n", "3"}}) {
      check({{query + number + parameter + kOdd.text, kOk, "tpm ",
              Texts{"\"" + value + queue, "\"" + kOdd.asAttribute}}});
    }
    for (const char* number : {"10", "-1", "4294967297", "99999999999999999999", "-9999999999"}) {
      check({{query + number + parameter + "5", json("1"), ""}});
    }
    check({{query + "4" + parameter + value + "4", kOk, "tpm "}});
  }
  check({{"cmd_id=26&action=1&algo_mode=" + kOdd.text, kOk, "tpm ",
          Texts{"\"m\"", "\"" + kOdd.asAttribute + "\""}},
         {"cmd_id=26&action=1&algo_mode=m", kOk, "tpm "}});
}

TEST_F(Shaping, QueuesThatAreMissing) {
  const std::string start = "<t><port_init><tx_module_parameters><tx_mod></tx_mod>";
  const std::string queue = "<tx_mod><queue_map><queue weight=\"1\"></queue>";
  const std::string end = "</queue_map></tx_mod></tx_module_parameters></port_init></t>";
  check({{"cmd_id=27&action=1&que_id=1&usr_pri=2", kOk, "tpm ",
          Texts{"<queue></queue>", "<queue weight=\"2\"></queue>"}}},
        {{"tpm", start + "<tx_mod></tx_mod>" + queue + "<o></o><queue></queue>" + end}});
  // One module too few: nothing is found, and the method is stored nowhere.
  check({{"cmd_id=27&action=1&que_id=0&usr_pri=2", json("1")},
         {"cmd_id=26&action=1&algo_mode=1", kOk, "tpm "}},
        {{"tpm", start + queue + end}});
}

// The commands of one limit, in both directions.
Texts limit(const std::string& words, const std::string& file) {
  Texts commands;
  for (const char* direction : {"us", "ds"}) {
    commands.push_back(std::string("echo 0 ") + direction + " UNI_ANY " + words +
                       " 1536 > /sys/devices/platform/tpm/cfg_traffic/" + file);
  }
  return commands;
}

TEST_F(Shaping, StormLimitIsAppliedThenStored) {
  const std::string queueFile = "rate_limit_queue_set";
  const std::string interfaceFile = "rate_limit_if_set";
  const std::string toQueue = "commands rate_limit_queue_set commands rate_limit_queue_set ";
  const std::string toInterface = "commands rate_limit_if_set commands rate_limit_if_set ";
  Texts off = limit("1 1048568", queueFile);
  for (const Texts& more : {limit("7 1048568", queueFile), limit("1048568", interfaceFile)}) {
    off.insert(off.end(), more.begin(), more.end());
  }
  const std::string set = "cmd_id=30&action=1&bs=";
  const auto port = [](const std::string& mode, const std::string& rate) {
    return Texts{"\"b0\"", "\"" + mode + "\"", "\"t0\"", "\"" + rate + "\""};
  };
  const std::string big(65536, '6');
  check({
      {set + "0&bs_thresh=512", kOk, toQueue + "tevo ", port("0", "512"),
       limit("1 512", queueFile)},
      {set + "1&bs_thresh=" + big, kOk, toQueue + "tevo ", port("1", big),
       limit("7 " + big, queueFile)},
      {set + "2&bs_thresh=%20\\", kOk, toInterface + "tevo ", port("2", "%20\\"),
       limit(" %20\\", interfaceFile)},
      {set + "3&bs_thresh=512", kOk, toQueue + toQueue + toInterface + "tevo ", port("3", "512"),
       off},
      {set + "0", kOk, toQueue + "tevo ", port("0", "t0"), limit("1 ", queueFile)},
      // The shell prints to the page what a line feed cuts off, and stops where it understands
      // nothing.
      {set + "0&bs_thresh=1\n2", "0 us UNI_ANY 1 1\n0 ds UNI_ANY 1 1\n" + kOk, toQueue + "tevo ",
       port("0", "1&#xA;2"), limit("1 1\n2", queueFile)},
      {set + "1&bs_thresh=(", kOk, "commands tevo ", port("1", "("), limit("7 (", queueFile)},
      {set + "b0&bs_thresh=" + kOdd.text, kOk, "tevo ", port("b0", kOdd.asAttribute)},
  });
}

}  // namespace
}  // namespace onu::test
