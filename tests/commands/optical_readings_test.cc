// Command 3 and the readers under it, on the simulated bus that sim/optical_module.cc gives them.

#include <array>
#include <cstdint>
#include <filesystem>
#include <numeric>

#include "base/fd.h"
#include "device/i2c_acess.h"
#include "device/smbus.h"
#include "tests/support/unit.h"

namespace onu::test {
namespace {

constexpr const char* kBus = "/dev/i2c-0";
constexpr const char* kRegisters = "/tmp/module";

// The reply with temperature, voltage, bias, and powers sent and received, parted by blanks.
std::string reading(const std::string& texts) {
  const Texts values = split(texts, ' ');
  return json("{bias:\"" + values[2] + " mA\",rx_opt_power:\"" + values[4] + " dBm\",temp:\"" +
              values[0] + " ℃\",tx_opt_power:\"" + values[3] + " dBm\",voltage:\"" + values[1] +
              " V\"}");
}
const std::string kNothing = "0.00 0.00 0.00 -inf -inf";

// What the bus sees: the probe, the setting of the register pointer, the read.
const std::string kSelect = "select address=0x51 ok\n";
const std::string kProbe = "read command=0x00 size=1 length=1 ";
const std::string kAwake = kSelect + kProbe + "ok\n";
const std::string kPointer = kSelect + "write command=0x60 size=1 length=0 ";
const std::string kPointed = kPointer + "ok\n";
const std::string kBlock = "read command=0x60 size=8 length=10 ";
const std::string kAll = kAwake + kPointed + kBlock + "ok\n";

class OpticalModule : public Unit {
 protected:
  void SetUp() override {
    Unit::SetUp();
    const Outcome trial = withModule("", kCgi);
    if (trial.status == 77) {
      GTEST_SKIP() << trial.err;
    }
    if (traffic().empty() && exists("/opt/onu/onu-cgi")) {
      GTEST_SKIP() << "the emulator does not pass I2C requests on to the kernel";
    }
  }

  // Runs a program with an optical module of the given register file.
  static Outcome withModule(const std::string& registers, const std::string& program) {
    writeFile(kRegisters, registers);
    return run("rm -f /record/i2c; /build/optical-module --registers " + std::string(kRegisters) +
                   " --record /record/i2c -- " + program,
               get("cmd_id=3&action=1"));
  }

  // The requests on the bus.
  static std::string traffic() { return run("sed 's/.* ms  //' /record/i2c").out; }
  // How many requests of this kind came 1 ms or more after the one before.
  static int rested(const std::string& request) {
    return std::stoi(run("grep -cE '^ *[1-9][0-9.]* ms  " + request + "' /record/i2c").out);
  }
};

TEST_F(OpticalModule, IsRead) {
  const std::string lit = "0x24 0x80 0x80 0x84 0x30 0x34 0x3F 0x5A 0x00 0xAD\n";
  const std::string values = "36.50 3.29 12.34 2.10 -17.62";
  const std::string probeBlock = "read command=0x00 size=8 length=1 ";
  const std::string busy = "select address=0x51 EBUSY\n";
  // The registers from 96 on, the reply to them, and what becomes of both when the bus fails.
  for (const auto& [registers, want, requests] : std::vector<std::array<std::string, 3>>{
           {lit, values, kAll},
           {"0x80 0 0x80 0xE8 0x17 0x70 0x27 0x10 0 1\n", "-128.00 3.30 6.00 0.00 -40.00", kAll},
           {"0x7F 255 255 255 255 255 255 255 255 255\n", "128.00 6.55 65.54 8.16 8.16", kAll},
           // 9999 is a hair below 0 dBm.
           {"255 0 0 0 0 0 0x27 0x0F 0 0\n", "-1.00 0.00 0.00 -0.00 -inf", kAll},
           // 32 is a tie, 32950 and 65 differ in double precision, 22413 and 35359 in single.
           {"0 32 0x80 0xB6 0 65 0x57 0x8D 0x8A 0x1F\n", "0.12 3.30 0.06 3.50 5.48", kAll},
           {lit + "fault absent\n", kNothing,
            kSelect + kProbe + "ENXIO\n" + probeBlock + "ENXIO\n" + kPointer + "ENXIO\n"},
           {lit + "fault address\n", kNothing, busy + busy},
           {lit + "fault pointer\n", kNothing, kAwake + kPointer + "ENXIO\n"},
           {lit + "fault block_read\n", kNothing, kAwake + kPointed + kBlock + "EIO\n"},
           {lit + "short_bytes 0\n", values,
            kSelect + kProbe + "EIO\n" + probeBlock + "ok\n" + kPointed + kBlock + "ok\n"},
           // Half of the bias pair is there: 0x30 and 0.
           {lit + "short_block 5\n", "36.50 3.29 12.29 -inf -inf", kAll},
           {lit + "short_block 0\n", kNothing, kAll},
       }) {
    const Outcome outcome = withModule("register 96 " + registers, kCgi);
    EXPECT_EQ(outcome.out + outcome.err, reading(want)) << registers;
    EXPECT_EQ(traffic(), requests) << registers;
    EXPECT_EQ(rested("write"), requests.find("write") == std::string::npos ? 0 : 1)
        << "between the selection and the first transfer";
  }
}

// Reads that no command makes, byte by byte and of more than one block: in a process of its own
// under the simulated bus, see below.
TEST(OnSimulatedBus, DISABLED_ByteModeAndLongReads) {
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
  EXPECT_TRUE(readSmbusBytes(bus.get(), bytes.data(), 100));
  EXPECT_FALSE(readSmbusBytes(bus.get(), bytes.data(), 101));
  writeFile(kRegisters, "short_block 0\n");
  EXPECT_FALSE(readSmbusBlocks(bus.get(), 0, bytes.data(), 33));
  writeFile(kRegisters, "register 96 1 1 1 1 1 1 1 1 1 1\nshort_bytes 3\n");
  module.readDiag(diag);
  EXPECT_EQ(diag.temperature, 0U);
}

TEST_F(OpticalModule, ByteModeAndLongReads) {
  const Outcome outcome = withModule(run("echo register 0 $(seq 0 255)").out,
                                     "/build/commands_test --gtest_also_run_disabled_tests "
                                     "--gtest_filter=OnSimulatedBus.*");
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_NE(traffic().find(kPointed + kProbe + "ok\n" + kProbe + "ok\n"), std::string::npos);
  EXPECT_NE(traffic().find("read command=0xe8 size=6 length=32 ok\n"
                           "read command=0x08 size=8 length=6 ok\n"),
            std::string::npos);
  EXPECT_GE(rested("read command=0x00 size=1"), 210) << "before every byte";
}

// Without the simulated bus: runs under an emulator, too.
TEST_F(Unit, NoOpticalModuleReadsAsZeros) {
  EXPECT_EQ(reply("cmd_id=3"), reading(kNothing)) << "no bus";
  std::filesystem::remove(kBus);
  const Outcome outcome = cgi(get("cmd_id=3&action=0"));
  writeFile(kBus, "");
  EXPECT_EQ(outcome.out + outcome.err,
            reading(kNothing) +
                "In this SFU could not open I2C bus file /dev/i2c-0, No such file or "
                "directory(2)\n");
}

}  // namespace
}  // namespace onu::test
