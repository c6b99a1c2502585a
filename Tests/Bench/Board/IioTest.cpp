#include <fstream>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

constexpr const char* Raw = "/sys/bus/iio/devices/iio:device0/in_voltage6_raw";
constexpr const char* Scale = "/sys/bus/iio/devices/iio:device0/in_voltage_scale";

class IioTest : public BoardTest {
protected:
    // By the lines A, B, C and enable, as they are wired.
    void Select(int channel) const {
        Board().DrivePin(2, 27, (channel & 1) != 0);
        Board().DrivePin(2, 28, (channel & 2) != 0);
        Board().DrivePin(2, 31, (channel & 4) != 0);
        Board().DrivePin(3, 10, channel < 8);
    }
};

TEST_F(IioTest, the_folder_opens_as_a_stream) {
    EXPECT_TRUE(std::ifstream("/sys/bus/iio/devices/iio:device0/").is_open());
}

TEST_F(IioTest, each_multiplexer_channel_has_its_own_reading) {
    for (int channel = 0; channel < 16; ++channel) {
        Board().SetMultiplexerRaw(channel, 100 + channel);
    }
    for (int channel = 0; channel < 16; ++channel) {
        Select(channel);
        EXPECT_EQ(Board().SelectedMultiplexer(), channel);
        EXPECT_EQ(ReadDevice(Raw), std::to_string(100 + channel) + "\n");
    }
}

TEST_F(IioTest, volts_become_counts_by_the_scale) {
    Select(1);
    Board().SetIioScale("4.0");
    Board().SetMultiplexerVolts(1, 0.5);
    EXPECT_EQ(ReadDevice(Scale), "4.0\n");
    EXPECT_EQ(ReadDevice(Raw), "128\n");
}

TEST_F(IioTest, a_reading_stops_at_ten_bits) {
    Select(1);
    Board().SetMultiplexerVolts(1, 100.0);
    EXPECT_EQ(ReadDevice(Raw), "1023\n");
}

TEST_F(IioTest, a_rail_has_its_voltage_by_default) {
    Select(10);
    EXPECT_EQ(ReadDevice(Raw), "572\n");  // 1.8 V at 3.222656250 mV a count
    Board().SetMultiplexerRaw(10, 1);
    Board().ReleaseMultiplexer(10);
    EXPECT_EQ(ReadDevice(Raw), "572\n");
}

TEST_F(IioTest, other_inputs_have_their_own_counts) {
    Board().SetIioRaw(11, 42);
    EXPECT_EQ(ReadDevice("/sys/bus/iio/devices/iio:device0/in_voltage11_raw"), "42\n");
    EXPECT_EQ(ReadDevice("/sys/bus/iio/devices/iio:device0/in_voltage12_raw"), "!" + std::to_string(ENOENT));
}

TEST_F(IioTest, a_reading_takes_no_write) { EXPECT_EQ(WriteDevice(Raw, "1"), EIO); }

}  // namespace
