#include <dirent.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cmath>
#include <ctime>
#include <fstream>
#include <set>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

class FaultsTest : public BoardTest {
protected:
    FaultsTest() : BoardTest(Quiet()) {}

    static Bench::BoardSetup Quiet() {
        Bench::BoardSetup setup;
        setup.speed = 100.0;
        setup.noise = false;
        return setup;
    }

    void Set(const std::string& text) const {
        std::string error;
        ASSERT_TRUE(Board().SetFault(text, error)) << error;
    }

    void Clear(const std::string& name) const {
        std::string error;
        ASSERT_TRUE(Board().ClearFault(name, error)) << error;
    }

    std::string Refusal(const std::string& text) const {
        std::string error;
        return Board().SetFault(text, error) ? "" : error;
    }

    static std::string Missing() { return "!" + std::to_string(ENOENT); }

    // One conversion of the detector.
    std::int32_t DetectorCount() const {
        const int file = open("/dev/spidev32765.1", O_RDWR);
        const std::uint16_t command = 0xA080;
        std::uint16_t words[2] = {};
        EXPECT_EQ(write(file, &command, sizeof(command)), 2);
        EXPECT_TRUE(Board().WaitUntil([] { return (ReadRegister(0xFFFFF43C) >> 21U & 1U) == 0; }));
        EXPECT_EQ(read(file, words, sizeof(words)), 4);
        close(file);
        const std::uint32_t raw = std::uint32_t{words[0]} << 16U | words[1];
        return static_cast<std::int32_t>(raw >> 5U & 0x1FFFFFFU) - 0x1000000;
    }
};

TEST_F(FaultsTest, an_unknown_name_is_refused_with_that_name) {
    EXPECT_EQ(Refusal("card-eaten"), "unknown fault \"card-eaten\"");
    std::string error;
    EXPECT_FALSE(Board().ClearFault("card-eaten", error));
    EXPECT_EQ(error, "unknown fault \"card-eaten\"");
}

TEST_F(FaultsTest, a_missing_or_wrong_value_is_refused) {
    EXPECT_EQ(Refusal("card-slow"), "card-slow needs a value: card-slow=MS");
    EXPECT_EQ(Refusal("card-slow=soon"), "card-slow: invalid value \"soon\" (expected a number from 0 to 1000000000)");
    EXPECT_EQ(Refusal("rail-out=16"), "rail-out: invalid value \"16\" (expected a multiplexer channel from 0 to 15)");
    EXPECT_EQ(Refusal("indicator-led-open=green"),
              "indicator-led-open: invalid value \"green\" (expected an LED of the indicator, such as amber-water)");
    for (const std::string line : {"4,0", "0,32", "3", "3,", ",3", "3,16,1", "3, 6", "-1,3", "3,-1", "all", "3,1x"}) {
        EXPECT_EQ(Refusal("gpio-taken=" + line),
                  "gpio-taken: invalid value \"" + line + "\" (expected a line, such as 3,16, or indicator)");
    }
    for (const std::string link : {"soon", "1,", ",1", "1,0", "1,65536", "-1", "1 ,2", "1,2,3", "12345678901234"}) {
        EXPECT_EQ(Refusal("link-cut=" + link),
                  "link-cut: invalid value \"" + link +
                      "\" (expected a number of bytes, with or without a port as in 100,3111)");
    }
    EXPECT_EQ(Refusal("led-dead=1"), "led-dead takes no value");
    EXPECT_EQ(Refusal("led-dead@soon"),
              "\"led-dead@soon\": invalid time after @ (expected seconds from 0 to 100000000)");
}

TEST_F(FaultsTest, each_fault_has_one_name_and_a_description) {
    std::set<std::string> names;
    for (const Bench::FaultInfo& fault : Bench::Board::KnownFaults()) {
        EXPECT_TRUE(names.insert(fault.name).second) << fault.name;
        EXPECT_FALSE(fault.description.empty()) << fault.name;
        EXPECT_EQ(fault.description.find('\n'), std::string::npos) << fault.name;
    }
    EXPECT_EQ(names.size(), 35U);
}

TEST_F(FaultsTest, set_faults_are_listed_until_cleared) {
    Set("led-dead");
    Set("card-slow=5@100000");
    ASSERT_EQ(Board().Faults().size(), 2U);
    EXPECT_EQ(Board().Faults()[0].text, "led-dead");
    EXPECT_TRUE(Board().Faults()[0].active);
    EXPECT_EQ(Board().Faults()[1].text, "card-slow=5@100000");
    EXPECT_FALSE(Board().Faults()[1].active);
    Clear("led-dead");
    EXPECT_EQ(Board().Faults().size(), 1U);
}

TEST_F(FaultsTest, a_fault_waits_for_its_second) {
    Set("gpio-missing@20");
    EXPECT_EQ(access("/sys/class/gpio/export", F_OK), 0);
    ASSERT_TRUE(Board().WaitUntil([this] { return Board().Seconds() >= 20.0; }));
    EXPECT_EQ(access("/sys/class/gpio/export", F_OK), -1);
}

TEST_F(FaultsTest, gpio_missing) {
    Set("gpio-missing");
    EXPECT_EQ(WriteDevice("/sys/class/gpio/export", "2"), ENOENT);
    EXPECT_EQ(opendir("/sys/class/gpio"), nullptr);
    Clear("gpio-missing");
    EXPECT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
}

TEST_F(FaultsTest, pwm_missing) {
    Set("pwm-missing");
    EXPECT_EQ(ReadDevice("/sys/class/pwm/pwmchip0/npwm"), Missing());
    Clear("pwm-missing");
    EXPECT_EQ(ReadDevice("/sys/class/pwm/pwmchip0/npwm"), "4\n");
}

TEST_F(FaultsTest, spi_missing) {
    Set("spi-missing");
    EXPECT_EQ(open("/dev/spidev32765.1", O_RDWR), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FaultsTest, iio_missing) {
    Set("iio-missing");
    EXPECT_EQ(ReadDevice("/sys/bus/iio/devices/iio:device0/in_voltage_scale"), Missing());
    EXPECT_FALSE(std::ifstream("/sys/bus/iio/devices/iio:device0/").is_open());
}

TEST_F(FaultsTest, mem_missing) {
    Set("mem-missing");
    EXPECT_EQ(open("/dev/mem", O_RDWR), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FaultsTest, write_refused) {
    Set("write-refused=gpio/export");
    EXPECT_EQ(WriteDevice("/sys/class/gpio/export", "2"), EIO);
    EXPECT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/export", "1"), 0);
    Set("write-refused=/dev/mem");
    EXPECT_FALSE(WriteRegister(0xFFFFF430, 1));
    Set("write-refused=spidev");
    const int file = open("/dev/spidev32765.1", O_RDWR);
    EXPECT_EQ(write(file, "ab", 2), -1);
    EXPECT_EQ(errno, EIO);
    close(file);
}

TEST_F(FaultsTest, spi_short) {
    Set("spi-short");
    const int file = open("/dev/spidev32765.1", O_RDWR);
    char data[4] = {};
    EXPECT_EQ(write(file, data, 2), 1);
    EXPECT_EQ(read(file, data, 4), 2);
    close(file);
}

TEST_F(FaultsTest, spi_echo) {
    Set("spi-echo");
    const int file = open("/dev/spidev32765.1", O_RDWR);
    const std::uint16_t command = 0xA080;
    std::uint16_t words[2] = {};
    EXPECT_EQ(write(file, &command, 2), 2);
    EXPECT_EQ(read(file, words, 4), 4);
    EXPECT_EQ(words[0], 0xA080);
    EXPECT_EQ(words[1], 0);
    close(file);
}

TEST_F(FaultsTest, eoc_stuck) {
    EXPECT_EQ(ReadRegister(0xFFFFF43C) >> 21U & 1U, 0U);
    Set("eoc-stuck");
    EXPECT_EQ(ReadRegister(0xFFFFF43C) >> 21U & 1U, 1U);
}

TEST_F(FaultsTest, flag_stuck_high_and_low) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "50"), 0);
    Set("flag-stuck-low");
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioB18/value"), "0\n");
    Clear("flag-stuck-low");
    Set("flag-stuck-high");
    Bench::InstrumentState state = Board().Instrument();
    state.pumpAngle = 340.0;
    Board().SetInstrument(state);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioB18/value"), "1\n");
    Clear("flag-stuck-high");
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioB18/value"), "0\n");
}

TEST_F(FaultsTest, a_turning_pump_wakes_a_wait_for_its_flag) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "50"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioB18/edge", "both"), 0);
    const int file = open("/sys/class/gpio/pioB18/value", O_RDONLY);
    char text[2] = {};
    ASSERT_EQ(read(file, text, 2), 2);
    ASSERT_EQ(text[0], '1');
    // Just before the edge, and so slow that the flag then stays low for a while of the machine's time.
    Board().SetSpeed(1.0);
    Bench::InstrumentState state = Board().Instrument();
    state.pumpAngle = 360.0 - Board().Settings().flagLowDegrees - 0.01;
    Board().SetInstrument(state);
    ASSERT_TRUE(WriteRegister(0xFFFFF430, 0x70));
    StartPwm(1, 1000000000);
    pollfd files{file, POLLPRI, 0};
    EXPECT_EQ(poll(&files, 1, 60000), 1);
    lseek(file, 0, SEEK_SET);
    ASSERT_EQ(read(file, text, 2), 2);
    EXPECT_EQ(text[0], '0');
    close(file);
}

TEST_F(FaultsTest, motor_stalled) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "50"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioB18/edge", "both"), 0);
    const int file = open("/sys/class/gpio/pioB18/value", O_RDONLY);
    char text[2] = {};
    ASSERT_EQ(read(file, text, 2), 2);
    Set("motor-stalled");
    StartPump();
    pollfd files{file, POLLPRI, 0};
    EXPECT_EQ(poll(&files, 1, 5000), 0);
    close(file);
}

TEST_F(FaultsTest, stir_stalled) {
    Bench::InstrumentState reagent = Board().Instrument();
    reagent.reagentUnmixed = 100.0;
    StartPwm(2, 1562500);
    const auto mixedIn = [&](double seconds) {
        Board().SetInstrument(reagent);
        const double end = Board().Seconds() + seconds;
        EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() >= end; }));
        return Board().Instrument().reagentMixed;
    };
    EXPECT_GT(mixedIn(5.0), 50.0);
    Set("stir-stalled");
    EXPECT_LT(mixedIn(5.0), 50.0);
}

TEST_F(FaultsTest, valve_stuck) {
    StartPwm(3, 1000000);
    EXPECT_GT(Board().Inputs().valvePower, 0.0);
    Set("valve-stuck");
    EXPECT_DOUBLE_EQ(Board().Inputs().valvePower, 0.0);
}

TEST_F(FaultsTest, led_dead) {
    StartPwm(0, 1000000);
    EXPECT_GT(DetectorCount(), 100000);
    Set("led-dead");
    EXPECT_EQ(DetectorCount(), 1500);
}

TEST_F(FaultsTest, detector_saturated) {
    Set("detector-saturated");
    EXPECT_EQ(DetectorCount(), 0xFFFFFF);
}

TEST_F(FaultsTest, rail_out) {
    Board().DrivePin(2, 28, true);  // channel 10
    const std::string raw = "/sys/bus/iio/devices/iio:device0/in_voltage6_raw";
    EXPECT_EQ(ReadDevice(raw), "572\n");
    Set("rail-out=9");
    EXPECT_EQ(ReadDevice(raw), "572\n");
    Set("rail-out=10");
    EXPECT_EQ(ReadDevice(raw), "286\n");
}

TEST_F(FaultsTest, card_out_and_card_in) {
    struct stat status {};
    Set("card-out");
    EXPECT_EQ(stat("/dev/mmcblk0", &status), -1);
    Set("card-in");
    EXPECT_EQ(stat("/dev/mmcblk0", &status), 0);
    Clear("card-in");
    EXPECT_EQ(stat("/dev/mmcblk0", &status), 0);
}

TEST_F(FaultsTest, a_cleared_card_out_puts_the_card_back) {
    struct stat status {};
    Set("card-out");
    Clear("card-out");
    EXPECT_EQ(stat("/dev/mmcblk0", &status), 0);
}

TEST_F(FaultsTest, card_full) {
    ASSERT_EQ(mount("/dev/mmcblk0p1", "/mnt/sd-card", "vfat", 16, ""), 0);
    Set("card-full");
    EXPECT_EQ(open("/mnt/sd-card/a", O_WRONLY | O_CREAT, 0600), -1);
    EXPECT_EQ(errno, ENOSPC);
    Clear("card-full");
    const int file = open("/mnt/sd-card/a", O_WRONLY | O_CREAT, 0600);
    EXPECT_GE(file, 0);
    close(file);
}

TEST_F(FaultsTest, card_slow) {
    ASSERT_EQ(mount("/dev/mmcblk0p1", "/mnt/sd-card", "vfat", 16, ""), 0);
    Set("card-slow=5000");
    const int file = open("/mnt/sd-card/a", O_WRONLY | O_CREAT, 0600);
    const double before = Board().Seconds();
    EXPECT_EQ(write(file, "x", 1), 1);
    EXPECT_GE(Board().Seconds() - before, 5.0);
    EXPECT_EQ(fsync(file), 0);
    EXPECT_GE(Board().Seconds() - before, 10.0);
    close(file);
}

TEST_F(FaultsTest, card_protected) {
    Set("card-protected");
    EXPECT_EQ(mount("/dev/mmcblk0p1", "/mnt/sd-card", "vfat", 16, ""), -1);
    EXPECT_EQ(errno, EROFS);
}

TEST_F(FaultsTest, clock_back) {
    const time_t before = time(nullptr);
    Set("clock-back=1000000");
    EXPECT_LT(time(nullptr), before - 900000);
}

TEST_F(FaultsTest, clock_back_at_its_second) {
    const time_t before = time(nullptr);
    Set("clock-back=1000000@30");
    EXPECT_GE(time(nullptr), before);
    ASSERT_TRUE(Board().WaitUntil([this] { return Board().Seconds() >= 30.0; }));
    EXPECT_LT(time(nullptr), before - 900000);
}

TEST_F(FaultsTest, a_cleared_clock_back_never_happens) {
    const time_t before = time(nullptr);
    Board().SetSpeed(1.0);  // so that it still waits
    Set("clock-back=1000000@10");
    Clear("clock-back");
    Board().SetSpeed(100.0);
    ASSERT_TRUE(Board().WaitUntil([this] { return Board().Seconds() >= 10.0; }));
    EXPECT_GE(time(nullptr), before);
}

TEST_F(FaultsTest, reagent_empty) {
    Set("reagent-empty");
    StartPump();
    ASSERT_TRUE(Board().WaitUntil([this] { return Board().Instrument().pumpTravel > 3600.0; }));
    EXPECT_LT(Board().Instrument().reagentStrength, 0.5);
}

TEST_F(FaultsTest, bubbles) {
    StartPwm(0, 1000000);
    const std::int32_t clear = DetectorCount();
    Set("bubbles");
    EXPECT_LT(DetectorCount(), clear * 9 / 10);
}

TEST_F(FaultsTest, flow_stopped) {
    Set("flow-stopped");
    StartPwm(3, 1000000);
    const double before = Board().Instrument().cellChlorine;
    ASSERT_TRUE(Board().WaitUntil([this] { return Board().Seconds() >= 30.0; }));
    EXPECT_DOUBLE_EQ(Board().Instrument().cellChlorine, before);
    Clear("flow-stopped");
    EXPECT_TRUE(Board().WaitUntil([this, before] { return Board().Instrument().cellChlorine > before + 0.1; }));
}

}  // namespace
