// What the remote indicator measures of itself: its LEDs one by one, and the length of its cable.
#include "Drivers/RemoteIndicator.h"

#include <cerrno>
#include <cmath>
#include <limits>

#include "Tests/Drivers/IndicatorFixture.h"

namespace {

const LogCall PairFailed = Logged("RemoteIndicator::LEDIsGood - color pair could not be set!");
const LogCall DemuxFailed = Logged("RemoteIndicator::LEDIsGood - demux could not be initialized!");
const LogCall VoltageFailed = Logged("RemoteIndicator::LEDIsGood - demux voltage could not be read!");
const LogCall LengthFailed = Logged("RemoteIndicator::CalculateCableLength failed!");
const LogCall LinesFailed = Logged("Demultiplexer::Init - Configuring demultiplexer driver GPIO failed!");
const LogCall ReadFailed{"Demultiplexer::ReadVoltage failed!", ERROR_LOG_LEVEL, DEVICE_MONITOR};

}  // namespace

TEST_F(IndicatorDriver, senses_each_led_at_its_channel_while_it_is_lit_alone) {
    const struct {
        std::uint32_t led;
        int channel;
        const char* values;
    } rows[] = {{0, 2, "000100"}, {1, 1, "100000"}, {2, 6, "000001"}, {3, 3, "010000"},
                {4, 4, "000010"}, {5, 5, "001000"}, {6, 5, "000000"}, {0xFFFFFFFF, 5, "000000"}};
    Init();
    for (const auto& row : rows) {
        SetColors(1);
        SetSense(0.0);
        SetVolts(row.channel, 0.9);
        LineWrites();
        EXPECT_TRUE(IsGood(row.led)) << row.led;
        Texts expected = Writes(row.values);
        const Texts restored = Writes("010100");
        expected.insert(expected.end(), restored.begin(), restored.end());
        EXPECT_EQ(LineWrites(), expected) << row.led;
        SetSense(0.9);
        SetVolts(row.channel, 0.0);
        EXPECT_FALSE(IsGood(row.led)) << row.led;
    }
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, takes_exactly_half_a_volt_for_a_bad_led) {
    Init();
    Board().SetMultiplexerRaw(2, 512);
    EXPECT_FALSE(IsGood(0));
    Board().SetMultiplexerRaw(2, 513);
    EXPECT_TRUE(IsGood(0));
}

TEST_F(IndicatorDriver, sounds_again_after_the_test_of_an_led) {
    Init();
    SetColors(3);
    WaitForSound(Alarm);
    IsGood(0);
    EXPECT_EQ(Lit(), "Br");
    Board().ClearSoundCalls();
    WaitForSound(Alarm);
}

TEST_F(IndicatorDriver, does_not_come_back_to_its_colours_where_an_led_can_not_be_lit_alone) {
    Init();
    SetSense(0.9);
    SetColors(7);
    FailCall("write", 5, EIO);
    LineWrites();
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(LineWrites(),
              (Texts{"pioD16/value=0", "pioD18/value=0", "pioD20/value=0", "pioD17/value=1"}));  // the fifth failed
    EXPECT_EQ(TakeLog(), (Log{SingleFailed, PairFailed}));
}

TEST_F(IndicatorDriver, calls_an_led_bad_where_the_multiplexer_can_not_be_set_up) {
    Init();
    SetSense(0.9);
    SetColors(7);
    SetFault("write-refused=pioC27/value");
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{LinesFailed, DemuxFailed}));
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(IndicatorDriver, calls_an_led_bad_where_the_voltage_can_not_be_read) {
    Init();
    SetColors(7);
    SetFault("iio-missing");
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{ReadFailed, VoltageFailed}));
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(IndicatorDriver, calls_an_led_bad_where_the_colours_do_not_come_back) {
    Init();
    SetSense(0.9);
    SetColors(2);
    FailCall("fork", 1, EAGAIN);
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
}

TEST_F(IndicatorDriver, is_good_with_three_good_leds_and_bad_with_two) {
    Init();
    SetColors(1);
    SetSense(0.0);
    SetVolts(1, 0.9);
    SetVolts(6, 0.9);
    EXPECT_FALSE(indicator->IndicatorIsGood());
    SetVolts(3, 0.9);
    EXPECT_TRUE(indicator->IndicatorIsGood());
    SetSense(0.9);
    EXPECT_TRUE(indicator->IndicatorIsGood());
}

TEST_F(IndicatorDriver, is_tested_led_by_led) {
    Init();
    SetColors(1);
    TakeTrace();
    indicator->IndicatorIsGood();
    Texts expected;
    for (const char* values : {"000100", "100000", "000001", "010000", "000010", "001000"}) {
        for (const char* state : {values, "010100"}) {
            const Texts writes = Writes(state);
            expected.insert(expected.end(), writes.begin(), writes.end());
        }
    }
    EXPECT_EQ(LineWrites(), expected);
}

TEST_F(IndicatorDriver, computes_the_length_of_its_cable_with_blue_lit_on_both_sides) {
    Init();
    SetColors(7);
    Board().SetIioScale("4.0");
    SetVolts(2, 2.0);  // 20 mA
    SetVolts(0, 1.5);  // 4.5 V, 1.5 V of them over 75 ohms
    LineWrites();
    float feet = 0.0F;
    EXPECT_TRUE(MeasureCable(feet));
    EXPECT_FLOAT_EQ(feet, 1200.0F);
    Texts expected = Writes("010100");
    const Texts restored = Writes("010001");
    expected.insert(expected.end(), restored.begin(), restored.end());
    EXPECT_EQ(LineWrites(), expected);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, measures_cables_of_ten_a_hundred_and_a_thousand_feet_within_5_percent) {
    settings.blueLEDForwardVoltageDrop = 3.2F;
    settings.cableResistancePerFoot = 0.052F;
    Board().SetIioScale("3.222656250");
    Init();
    SetColors(1);
    for (const float cable : {10.0F, 100.0F, 1000.0F}) {
        SetFault("cable=" + std::to_string(cable));
        float feet = 0.0F;
        EXPECT_TRUE(MeasureCable(feet));
        EXPECT_NEAR(feet, cable, 0.05F * cable);
        ClearFault("cable");
    }
}

TEST_F(IndicatorDriver, reads_the_current_ahead_of_the_voltage) {
    Init();
    SetColors(1);
    TakeTrace();
    float feet = 0.0F;
    MeasureCable(feet);
    Texts selections;
    for (const std::string& line : TakeTrace()) {
        if (line.rfind(Pins + "pioC28/value=", 0) == 0) {
            selections.push_back(line.substr(line.size() - 1));
        }
    }
    EXPECT_EQ(selections, (Texts{"0", "1", "0"}));  // set up, channel 2, channel 0
}

TEST_F(IndicatorDriver, measures_no_cable_without_its_resistance_per_foot) {
    settings.cableResistancePerFoot = 0.0F;
    Init();
    SetColors(7);
    float feet = 7.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(feet, 7.0F);
    EXPECT_EQ(Lit(), "Rb");
    EXPECT_EQ(TakeLog(), (Log{LengthFailed}));
}

TEST_F(IndicatorDriver, measures_an_endless_cable_where_no_current_flows) {
    Init();
    SetColors(1);
    Board().SetIioScale("4.0");
    SetVolts(2, 0.0);
    SetVolts(0, 1.5);
    float feet = 0.0F;
    EXPECT_TRUE(MeasureCable(feet));
    EXPECT_EQ(feet, std::numeric_limits<float>::infinity());
}

TEST_F(IndicatorDriver, measures_no_cable_where_the_multiplexer_fails) {
    Init();
    SetColors(7);
    float feet = 7.0F;
    for (const char* fault : {"iio-missing", "write-refused=pioC31/value"}) {
        SetFault(fault);
        EXPECT_FALSE(MeasureCable(feet));
        EXPECT_EQ(TakeLog().back(), LengthFailed);
        EXPECT_EQ(Lit(), "Rb");
        ClearFault(std::string(fault).substr(0, std::string(fault).find('=')));
    }
    EXPECT_EQ(feet, 7.0F);
}

TEST_F(IndicatorDriver, measures_no_cable_where_blue_can_not_be_lit) {
    Init();
    SetColors(7);
    SetVolts(0, 0.9);
    SetVolts(2, 0.9);
    FailCall("write", 1, EIO);
    float feet = 7.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(feet, 7.0F);
    EXPECT_EQ(Lit(), "Rb");
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed, LengthFailed}));
}

TEST_F(IndicatorDriver, counts_a_cable_as_not_measured_where_the_colours_do_not_come_back) {
    Init();
    SetColors(2);
    FailCall("fork", 1, EAGAIN);
    float feet = 0.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed, LengthFailed}));
}
