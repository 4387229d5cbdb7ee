#include "tests/support/unit.h"

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

// The commands of one limit, in both directions.
std::string limit(const std::string& words, const std::string& file) {
  const std::string rest =
      " UNI_ANY " + words + " 1536 > /sys/devices/platform/tpm/cfg_traffic/" + file;
  return "echo 0 us" + rest + "|echo 0 ds" + rest;
}

}  // namespace

TEST_F(Unit, Commands26And27Scheduling) {
  const std::string set = "cmd_id=26&action=1&algo_mode=";
  checkWithoutValues({{"cmd_id=26", "error"}, {set + "1", "0"}});
  check({{"cmd_id=26", "{algo_mode:\"m\"}"},
         {set + kOdd.text, "0", "tpm ", "\"m\"|\"" + kOdd.asAttribute + "\""},
         {set + "m", "0", "tpm "}});

  const std::string start = "<t><port_init><tx_module_parameters><tx_mod></tx_mod>";
  const std::string queue = "<tx_mod><queue_map><queue weight=\"1\"></queue>";
  const std::string end = "</queue_map></tx_mod></tx_module_parameters></port_init></t>";
  check({{"cmd_id=27&action=1&que_id=1&usr_pri=2", "0", "tpm ",
          "<queue></queue>|<queue weight=\"2\"></queue>"}},
        {{"tpm", start + "<tx_mod></tx_mod>" + queue + "<o></o><queue></queue>" + end}});
  // One module too few: nothing is found, and the method is stored nowhere.
  check({{"cmd_id=27&action=1&que_id=0&usr_pri=2", "1"},
         {"cmd_id=27", queues("queue", "")},
         {set + "1", "0", "tpm "}},
        {{"tpm", start + queue + end}});
}

TEST_F(Unit, Commands27And28Queues) {
  // The parameters, the key of a queue and its value in the file, both without its number.
  for (const auto& [number, queue, value, key, old] : std::vector<std::array<std::string, 5>>{
           {"27", "&que_id=", "&usr_pri=", "queue", "w"},
           {"28&voq_dir=1", "&voq_id=", "&voq_thresh=", "size", "s"},
           {"28&voq_dir=00", "&voq_id=", "&voq_thresh=", "size", "s"},
           {"28&voq_dir=0", "&voq_id=", "&voq_thresh=", "size", "r"}}) {
    const std::string command = "cmd_id=" + number;
    const std::string set = command + "&action=1" + queue;
    const auto changed = [&old = old](const std::string& id) {
      return "\"" + old + id + "|\"" + kOdd.asAttribute;
    };
    checkWithoutValues({{command, "error"}, {set + "0" + value + "1", "1"}});
    check({{command, queues(key, old)},
           {set + "4" + value + old + "4", "0", "tpm "},
           {set + "0" + value + kOdd.text, "0", "tpm ", changed("0")},
           {set + "9" + value + kOdd.text, "0", "tpm ", changed("9")},
           {set + "3<\"\n" + value + kOdd.text, "0", "tpm ", changed("3")},
           {set + "10" + value + "5", "1"},
           {set + "-1" + value + "5", "1"}});
  }
}

TEST_F(Unit, Command30StormLimit) {
  const std::string queue = "rate_limit_queue_set";
  const std::string all = "rate_limit_if_set";
  const std::string toQueue = "commands " + queue + " commands " + queue + " ";
  const std::string toAll = "commands " + all + " commands " + all + " ";
  const std::string off =
      limit("1 1048568", queue) + "|" + limit("7 1048568", queue) + "|" + limit("1048568", all);
  const std::string set = "cmd_id=30&action=1&bs=";
  const auto port = [](const std::string& mode, const std::string& rate) {
    return "\"b0\"|\"" + mode + "\"|\"t0\"|\"" + rate + "\"";
  };
  const std::string big(65536, '6');
  checkWithoutValues({{"cmd_id=30", "[]"}, {set + "4&bs_thresh=5", "1"}});
  check({
      {"cmd_id=30&action=0", R"([{bc_mode:"b0",rate:"t0"}])"},
      {set + "0&bs_thresh=512", "0", toQueue + "tevo ", port("0", "512"), limit("1 512", queue)},
      {set + "1&bs_thresh=" + big, "0", toQueue + "tevo ", port("1", big),
       limit("7 " + big, queue)},
      {set + "2&bs_thresh=%20\\", "0", toAll + "tevo ", port("2", "%20\\"), limit(" %20\\", all)},
      {set + "3&bs_thresh=512", "0", toQueue + toQueue + toAll + "tevo ", port("3", "512"), off},
      {set + "0", "0", toQueue + "tevo ", port("0", "t0"), limit("1 ", queue)},
      // The shell prints to the page what a line feed cuts off.
      {set + "0&bs_thresh=1\n2", "0 us UNI_ANY 1 1\n0 ds UNI_ANY 1 1\n" + json("0"),
       toQueue + "tevo ", port("0", "1&#xA;2"), limit("1 1\n2", queue)},
      {set + "b0&bs_thresh=" + kOdd.text, "0", "tevo ", port("b0", kOdd.asAttribute)},
  });
  check({{"cmd_id=30", R"([{bc_mode:"1",rate:""}])"}},
        {{"tevo", "<c><storm><port mode='1'/></storm></c>"}});
}

}  // namespace onu::test
