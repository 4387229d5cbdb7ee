// Command 3 and the readers under it, on the simulated bus that sim/optical_module.cc gives them.

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

std::string reading(const std::string& temperature, const std::string& voltage,
                    const std::string& bias, const std::string& tx, const std::string& rx) {
  return json("{bias:\"" + bias + " mA\",rx_opt_power:\"" + rx + " dBm\",temp:\"" + temperature +
              " ℃\",tx_opt_power:\"" + tx + " dBm\",voltage:\"" + voltage + " V\"}");
}
const std::string kNothingRead = reading("0.00", "0.00", "0.00", "-inf", "-inf");

// A module in use, as raw bytes, and its reply.
const std::string kLit = "register 96 0x24 0x80 0x80 0x84 0x30 0x34 0x3F 0x5A 0x00 0xAD\n";
const std::string kLitReply = reading("36.50", "3.29", "12.34", "2.10", "-17.62");

// What the bus sees: the probe, the setting of the register pointer, the read.
const std::string kSelect = "select address=0x51 ok\n";
const std::string kAwake = kSelect + "read command=0x00 size=1 length=1 ok\n";
const std::string kPointer = kSelect + "write command=0x60 size=1 length=0 ";
const std::string kPointed = kPointer + "ok\n";
const std::string kBlock = "read command=0x60 size=8 length=10 ";
const std::string kAll = kAwake + kPointed + kBlock + "ok\n";

// Runs a program with an optical module of the given register file.
Outcome withModule(const std::string& registers, const std::vector<std::string>& command,
                   const Request& request) {
  writeFile(kRegisters, registers);
  std::filesystem::remove(kRecord);
  std::vector<std::string> words = {"--registers", kRegisters, "--record", kRecord, "--"};
  words.insert(words.end(), command.begin(), command.end());
  return Unit::run("/build/optical-module", words, request);
}

struct Traffic {
  std::string requests;
  std::vector<double> pauses;  // ms before each
};

Traffic busTraffic() {
  Traffic traffic;
  std::ifstream record(kRecord);
  for (std::string line; std::getline(record, line);) {
    traffic.requests += line.substr(line.find(" ms  ") + 5) + "\n";
    traffic.pauses.push_back(std::strtod(line.c_str(), nullptr));
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
    if (busTraffic().requests.empty() && exists("/opt/onu/onu-cgi")) {
      GTEST_SKIP() << "the emulator does not pass I2C requests on to the kernel";
    }
  }

  static void check(const std::string& registers, const std::string& reply,
                    const std::string& traffic) {
    const Outcome outcome = withModule(registers, {kCgi}, get("cmd_id=3&action=0"));
    EXPECT_EQ(outcome.out, reply) << registers;
    EXPECT_EQ(outcome.err, "") << registers;
    EXPECT_EQ(outcome.status, 0) << registers;
    EXPECT_EQ(busTraffic().requests, traffic) << registers;
  }
};

TEST_F(OpticalModule, IsReadAsItCounts) {
  check("temperature 36.5\nsupply_voltage 3.29\ntx_bias 12.34\ntx_power 2.1\nrx_power -17.62\n",
        kLitReply, kAll);
  for (const auto& [bytes, reply] : std::map<std::string, std::string>{
           {"0x80 0 0x80 0xE8 0x17 0x70 0x27 0x10 0 1",
            reading("-128.00", "3.30", "6.00", "0.00", "-40.00")},
           {"0x7F 255 255 255 255 255 255 255 255 255",
            reading("128.00", "6.55", "65.54", "8.16", "8.16")},
           // 9999 is a hair below 0 dBm.
           {"255 0 0 0 0 0 0x27 0x0F 0 0", reading("-1.00", "0.00", "0.00", "-0.00", "-inf")},
           // 32950 and 65 print otherwise in double precision, 22413 and 35359 in single.
           {"0 0 0x80 0xB6 0 65 0x57 0x8D 0x8A 0x1F",
            reading("0.00", "3.30", "0.06", "3.50", "5.48")}}) {
    check("register 96 " + bytes + "\n", reply, kAll);
  }
}

TEST_F(OpticalModule, StandsFaultsOfTheBus) {
  check(kLit + "fault absent\n", kNothingRead,
        kSelect + "read command=0x00 size=1 length=1 ENXIO\n" +
            "read command=0x00 size=8 length=1 ENXIO\n" + kPointer + "ENXIO\n");
  check(kLit + "fault address\n", kNothingRead,
        "select address=0x51 EBUSY\nselect address=0x51 EBUSY\n");
  check(kLit + "fault pointer\n", kNothingRead, kAwake + kPointer + "ENXIO\n");
  check(kLit + "fault block_read\n", kNothingRead, kAwake + kPointed + kBlock + "EIO\n");
  check(kLit + "short_bytes 0\n", kLitReply,
        kSelect + "read command=0x00 size=1 length=1 EIO\n" +
            "read command=0x00 size=8 length=1 ok\n" + kPointed + kBlock + "ok\n");
  // Half of the bias pair is there: 0x30 and 0.
  check(kLit + "short_block 5\n", reading("36.50", "3.29", "12.29", "-inf", "-inf"), kAll);
  check(kLit + "short_block 0\n", kNothingRead, kAll);
}

TEST_F(OpticalModule, RestsAndIsReadWhateverTheRequestSays) {
  for (const Request& request : {get("cmd_id=3&action=1"), post("cmd_id=3&action=7&temp=1")}) {
    EXPECT_EQ(withModule(kLit, {kCgi}, request).out, kLitReply);
    const std::vector<double> pauses = busTraffic().pauses;
    ASSERT_EQ(pauses.size(), 5U);
    EXPECT_GE(pauses[3], 1.0) << "between the selection and the first transfer";
  }
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
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  std::string counting = "register 0";
  for (int i = 0; i < 256; ++i) {
    counting += " " + std::to_string(i);
  }
  const Outcome outcome =
      withModule(counting + "\n", {self, "--gtest_filter=OpticalModule.ByteModeAndLongReads"},
                 {{{"ON_SIMULATED_BUS", "1"}}, ""});
  EXPECT_EQ(outcome.status, 0) << outcome.out;

  std::string expected = kAwake + kPointed;
  for (int i = 0; i < 10; ++i) {
    expected += "read command=0x00 size=1 length=1 ok\n";
  }
  expected += kSelect +
              "read command=0xc8 size=6 length=32 ok\nread command=0xe8 size=6 length=32 ok\n"
              "read command=0x08 size=8 length=6 ok\nread command=0x00 size=6 length=32 ok\n"
              "read command=0x00 size=1 length=1 ok\n";
  const Traffic traffic = busTraffic();
  EXPECT_EQ(traffic.requests.substr(0, expected.size()), expected);
  ASSERT_GT(traffic.pauses.size(), 14U);
  for (std::size_t i = 4; i < 14; ++i) {
    EXPECT_GE(traffic.pauses[i], 1.0) << "byte " << i - 4;
  }
}

// Without the simulated bus: runs under an emulator, too.
TEST(NoOpticalModule, AnswersWithZeros) {
  Unit::reset();
  std::filesystem::remove(kBus);
  const Outcome outcome = Unit::cgi(get("cmd_id=3&action=0"));
  writeFile(kBus, "");
  EXPECT_EQ(outcome.out, kNothingRead);
  EXPECT_EQ(outcome.err,
            "In this SFU could not open I2C bus file /dev/i2c-0, No such file or directory(2)\n");
  EXPECT_EQ(outcome.status, 0);
  const Outcome noBus = Unit::cgi(get("cmd_id=3&action=0"));
  EXPECT_EQ(noBus.out + noBus.err, kNothingRead);
}

}  // namespace
}  // namespace onu::test
