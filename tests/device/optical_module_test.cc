// Command 3 and the readers under it, on the simulated bus that sim/optical_module.cc gives them.

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <numeric>

#include "device/i2c_acess.h"
#include "device/smbus.h"
#include "frontend/fd.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kCgi = "/var/tevo/website/www/cgi-bin/onu-cgi";
constexpr const char* kBus = "/dev/i2c-0";
constexpr const char* kRegisters = "/tmp/module";
constexpr const char* kRecord = "/record/i2c";
constexpr const char* kNothingRead =
    "{bias:\"0.00 mA\",rx_opt_power:\"-inf dBm\",temp:\"0.00 ℃\",tx_opt_power:\"-inf dBm\","
    "voltage:\"0.00 V\"}";

// A module in use, as raw bytes, and its reply.
const std::string kLit = "register 96 0x24 0x80 0x80 0x84 0x30 0x34 0x3F 0x5A 0x00 0xAD\n";
constexpr const char* kLitReply =
    "{bias:\"12.34 mA\",rx_opt_power:\"-17.62 dBm\",temp:\"36.50 ℃\",tx_opt_power:\"2.10 dBm\","
    "voltage:\"3.29 V\"}";

// What the bus sees: the probe, the setting of the register pointer, the read.
const std::string kAwake =
    "select address=0x51 ok\n"
    "read command=0x00 size=1 length=1 ok\n";
const std::string kPointed =
    "select address=0x51 ok\n"
    "write command=0x60 size=1 length=0 ok\n";
const std::string kBlock = "read command=0x60 size=8 length=10 ok\n";

// Runs a program with an optical module of the given register file.
Outcome withModule(const std::string& registers, const std::vector<std::string>& command,
                   const Request& request) {
  writeFile(kRegisters, registers);
  std::filesystem::remove(kRecord);
  std::vector<std::string> words = {"--registers", kRegisters, "--record", kRecord, "--"};
  words.insert(words.end(), command.begin(), command.end());
  return Unit::run("/build/optical-module", words, request);
}

struct BusRequest {
  double pause;  // ms since the one before
  std::string text;
};

std::vector<BusRequest> busRequests() {
  std::vector<BusRequest> requests;
  const std::string record = readFile(kRecord);
  for (std::size_t at = 0; at < record.size(); at = record.find('\n', at) + 1) {
    const std::string line = record.substr(at, record.find('\n', at) + 1 - at);
    const std::size_t unit = line.find(" ms  ");
    requests.push_back({std::strtod(line.c_str(), nullptr), line.substr(unit + 5)});
  }
  return requests;
}

std::string busTraffic() {
  std::string traffic;
  for (const BusRequest& request : busRequests()) {
    traffic.append(request.text);
  }
  return traffic;
}

// Whether this is the process that ByteModeAndLongReads starts.
bool onSimulatedBus() { return std::getenv("ON_SIMULATED_BUS") != nullptr; }

class OpticalModule : public Unit {
 protected:
  void SetUp() override {
    if (onSimulatedBus()) {
      return;
    }
    Unit::SetUp();
    const Outcome trial = withModule("", {kCgi}, get("cmd_id=3"));
    if (trial.status == 77) {
      GTEST_SKIP() << trial.err;
    }
    if (busTraffic().empty() && exists("/opt/onu/onu-cgi")) {
      GTEST_SKIP() << "the emulator does not pass I2C requests on to the kernel";
    }
  }
};

struct Case {
  const char* label;
  std::string registers;
  std::string body;
  std::string traffic;
};

void PrintTo(const Case& row, std::ostream* out) { *out << "registers:\n" << row.registers; }

class OpticalReadings : public OpticalModule, public testing::WithParamInterface<Case> {};

TEST_P(OpticalReadings, Reply) {
  const Case& row = GetParam();
  const Outcome outcome = withModule(row.registers, {kCgi}, get("cmd_id=3&action=0"));
  EXPECT_EQ(outcome.out, json(row.body));
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(busTraffic(), row.traffic);
}

std::string label(const testing::TestParamInfo<Case>& row) { return row.param.label; }

INSTANTIATE_TEST_SUITE_P(
    Values, OpticalReadings,
    testing::Values(Case{"usual",
                         "temperature 36.5\nsupply_voltage 3.29\ntx_bias 12.34\ntx_power 2.1\n"
                         "rx_power -17.62\n",
                         kLitReply, kAwake + kPointed + kBlock},
                    Case{"coldest_33000_6000_10000_1",
                         "register 96 0x80 0x00 0x80 0xE8 0x17 0x70 0x27 0x10 0x00 0x01\n",
                         "{bias:\"6.00 mA\",rx_opt_power:\"-40.00 dBm\",temp:\"-128.00 ℃\","
                         "tx_opt_power:\"0.00 dBm\",voltage:\"3.30 V\"}",
                         kAwake + kPointed + kBlock},
                    Case{"hottest_and_highest_counts",
                         "register 96 0x7F 0xFF 0xFF 0xFF 0xFF 0xFF 0xFF 0xFF 0xFF 0xFF\n",
                         "{bias:\"65.54 mA\",rx_opt_power:\"8.16 dBm\",temp:\"128.00 ℃\","
                         "tx_opt_power:\"8.16 dBm\",voltage:\"6.55 V\"}",
                         kAwake + kPointed + kBlock},
                    // 9999 is a hair below 0 dBm.
                    Case{"minus_one_degree_minus_zero_dark",
                         "register 96 0xFF 0x00 0 0 0 0 0x27 0x0F 0 0\n",
                         "{bias:\"0.00 mA\",rx_opt_power:\"-inf dBm\",temp:\"-1.00 ℃\","
                         "tx_opt_power:\"-0.00 dBm\",voltage:\"0.00 V\"}",
                         kAwake + kPointed + kBlock},
                    // 32950 and 65 print otherwise in double precision, 22413 and 35359 in single.
                    Case{"precision", "register 96 0 0 0x80 0xB6 0 65 0x57 0x8D 0x8A 0x1F\n",
                         "{bias:\"0.06 mA\",rx_opt_power:\"5.48 dBm\",temp:\"0.00 ℃\","
                         "tx_opt_power:\"3.50 dBm\",voltage:\"3.30 V\"}",
                         kAwake + kPointed + kBlock}),
    label);

INSTANTIATE_TEST_SUITE_P(
    Faults, OpticalReadings,
    testing::Values(
        Case{"absent", kLit + "fault absent\n", kNothingRead,
             "select address=0x51 ok\n"
             "read command=0x00 size=1 length=1 ENXIO\n"
             "read command=0x00 size=8 length=1 ENXIO\n"
             "select address=0x51 ok\n"
             "write command=0x60 size=1 length=0 ENXIO\n"},
        Case{"address", kLit + "fault address\n", kNothingRead,
             "select address=0x51 EBUSY\n"
             "select address=0x51 EBUSY\n"},
        Case{"pointer", kLit + "fault pointer\n", kNothingRead,
             kAwake + "select address=0x51 ok\nwrite command=0x60 size=1 length=0 ENXIO\n"},
        Case{"block_read", kLit + "fault block_read\n", kNothingRead,
             kAwake + kPointed + "read command=0x60 size=8 length=10 EIO\n"},
        Case{"byte_read", kLit + "short_bytes 0\n", kLitReply,
             "select address=0x51 ok\n"
             "read command=0x00 size=1 length=1 EIO\n"
             "read command=0x00 size=8 length=1 ok\n" +
                 kPointed + kBlock},
        // Half of the bias pair is there: 0x30 and 0.
        Case{"short_block", kLit + "short_block 5\n",
             "{bias:\"12.29 mA\",rx_opt_power:\"-inf dBm\",temp:\"36.50 ℃\","
             "tx_opt_power:\"-inf dBm\",voltage:\"3.29 V\"}",
             kAwake + kPointed + kBlock},
        Case{"empty_block", kLit + "short_block 0\n", kNothingRead, kAwake + kPointed + kBlock}),
    label);

// The module needs its rest between the selection and the first transfer.
TEST_F(OpticalModule, SleepsBeforeThePointer) {
  withModule(kLit, {kCgi}, get("cmd_id=3"));
  const std::vector<BusRequest> requests = busRequests();
  ASSERT_EQ(requests.size(), 5U);
  EXPECT_GE(requests[3].pause, 1.0);
}

TEST_F(OpticalModule, ActionAndParametersDoNotMatter) {
  const std::string reply = withModule(kLit, {kCgi}, get("cmd_id=3&action=0")).out;
  EXPECT_EQ(withModule(kLit, {kCgi}, get("cmd_id=3&action=1")).out, reply);
  EXPECT_EQ(withModule(kLit, {kCgi}, post("cmd_id=3&action=7&temp=1")).out, reply);
}

// One module outlives its requests, and even the command it was started for.
TEST_F(OpticalModule, FollowsItsFile) {
  const std::string script = std::string("(sleep 0.1; ") + kCgi + "; echo temperature -1.5 >" +
                             kRegisters + "; " + kCgi + ") & exit 7";
  const Outcome outcome = withModule(kLit, {"/bin/busybox", "sh", "-c", script}, get("cmd_id=3"));
  EXPECT_EQ(outcome.out,
            json(kLitReply) + json("{bias:\"0.00 mA\",rx_opt_power:\"-inf dBm\",temp:\"-1.50 ℃\","
                                   "tx_opt_power:\"-inf dBm\",voltage:\"0.00 V\"}"));
  EXPECT_EQ(outcome.status, 7);
}

// What runs on the simulated bus in a process of its own, see below.
void readOnSimulatedBus() {
  I2cAcess module(kBus);
  module.setReadMode(I2cReadMode::kByte);
  OpticalDiag diag;
  EXPECT_EQ(module.readDiag(diag), 0);
  EXPECT_EQ(diag.temperature, 0x6061U);
  EXPECT_EQ(diag.rxReceivedPower, 0x6869U);

  const Fd bus = Fd::open(kBus, O_RDWR);
  ASSERT_TRUE(selectSmbusDevice(bus.get(), 0x51));
  std::array<std::uint8_t, 101> bytes{};
  std::array<std::uint8_t, 101> expected{};
  std::iota(expected.begin(), expected.begin() + 70, static_cast<std::uint8_t>(200));
  EXPECT_TRUE(readSmbusBlocks(bus.get(), 200, bytes.data(), 70));
  EXPECT_EQ(bytes, expected);
  EXPECT_TRUE(readSmbusBlocks(bus.get(), 0, bytes.data(), 32));
  EXPECT_FALSE(readSmbusBytes(bus.get(), bytes.data(), bytes.size()));

  writeFile(kRegisters, "short_block 0\n");
  EXPECT_FALSE(readSmbusBlocks(bus.get(), 0, bytes.data(), 33));
  writeFile(kRegisters, "register 96 1 1 1 1 1 1 1 1 1 1\nshort_bytes 3\n");
  module.readDiag(diag);
  EXPECT_EQ(diag.temperature, 0U);
}

// Reads that no command makes: byte by byte, and more than one block.
TEST_F(OpticalModule, ByteModeAndLongReads) {
  if (onSimulatedBus()) {
    return readOnSimulatedBus();
  }
  std::array<char, PATH_MAX> self{};
  ASSERT_GT(::readlink("/proc/self/exe", self.data(), self.size() - 1), 0);
  std::string counting = "register 0";
  for (int i = 0; i < 256; ++i) {
    counting.append(" ").append(std::to_string(i));
  }
  const Outcome outcome = withModule(
      counting + "\n", {self.data(), "--gtest_filter=OpticalModule.ByteModeAndLongReads"},
      {{{"ON_SIMULATED_BUS", "1"}}, ""});
  EXPECT_EQ(outcome.status, 0) << outcome.out;

  std::string oneByOne;
  for (int i = 0; i < 10; ++i) {
    oneByOne.append("read command=0x00 size=1 length=1 ok\n");
  }
  const std::string expected = kAwake + kPointed + oneByOne +
                               "select address=0x51 ok\n"
                               "read command=0xc8 size=6 length=32 ok\n"
                               "read command=0xe8 size=6 length=32 ok\n"
                               "read command=0x08 size=8 length=6 ok\n"
                               "read command=0x00 size=6 length=32 ok\n"
                               "read command=0x00 size=1 length=1 ok\n";
  EXPECT_EQ(busTraffic().substr(0, expected.size()), expected);
  const std::vector<BusRequest> requests = busRequests();
  ASSERT_GT(requests.size(), 14U);
  for (std::size_t i = 4; i < 14; ++i) {
    EXPECT_GE(requests[i].pause, 1.0) << "byte " << i - 4;
  }
}

// Without the simulated bus: these run under an emulator, too.
class NoOpticalModule : public Unit {
 protected:
  void TearDown() override { writeFile(kBus, ""); }
};

TEST_F(NoOpticalModule, BusMissing) {
  std::filesystem::remove(kBus);
  const Outcome outcome = cgi(get("cmd_id=3&action=0"));
  EXPECT_EQ(outcome.out, json(kNothingRead));
  EXPECT_EQ(outcome.err,
            "In this SFU could not open I2C bus file /dev/i2c-0, No such file or directory(2)\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(NoOpticalModule, BusWithoutI2c) {
  const Outcome outcome = cgi(get("cmd_id=3&action=0"));
  EXPECT_EQ(outcome.out, json(kNothingRead));
  EXPECT_EQ(outcome.err, "");
}

}  // namespace
}  // namespace onu::test
