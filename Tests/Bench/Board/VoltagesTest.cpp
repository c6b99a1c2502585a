// What the on-chip converter measures of the remote indicator, the motors' stages, the amplifier and the rails, read as
// the product reads it.
#include <string>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

struct Led {
    const char* name;
    Bench::IndicatorLed led;
    int pin;  // of bank 3
    int channel;
};

constexpr Led Leds[] = {
    {"blue-analyzer", Bench::IndicatorLed::BlueAnalyzer, 17, 2},
    {"amber-analyzer", Bench::IndicatorLed::AmberAnalyzer, 16, 1},
    {"red-analyzer", Bench::IndicatorLed::RedAnalyzer, 21, 6},
    {"blue-water", Bench::IndicatorLed::BlueWater, 18, 3},
    {"amber-water", Bench::IndicatorLed::AmberWater, 19, 4},
    {"red-water", Bench::IndicatorLed::RedWater, 20, 5},
};

class VoltagesTest : public BoardTest {
protected:
    VoltagesTest() : BoardTest(Quiet()) {}

    static Bench::BoardSetup Quiet() {
        Bench::BoardSetup setup;
        setup.noise = false;
        return setup;
    }

    void Set(const std::string& fault) const {
        std::string error;
        ASSERT_TRUE(Board().SetFault(fault, error)) << error;
    }

    void Clear(const std::string& fault) const {
        std::string error;
        ASSERT_TRUE(Board().ClearFault(fault, error)) << error;
    }

    float Volts(int channel) const {
        const std::string folder = "/sys/bus/iio/devices/iio:device0/";
        Board().DrivePin(2, 27, (channel & 1) != 0);
        Board().DrivePin(2, 28, (channel & 2) != 0);
        Board().DrivePin(2, 31, (channel & 4) != 0);
        Board().DrivePin(3, 10, channel < 8);
        const float raw = std::stof(ReadDevice(folder + "in_voltage6_raw"));
        return raw * std::stof(ReadDevice(folder + "in_voltage_scale")) / 1024.0F;
    }

    // As the program does, by the pin files.
    static void Light(int pin, bool lit) {
        const std::string folder = "/sys/class/gpio/pioD" + std::to_string(pin);
        if (ReadDevice(folder + "/value")[0] == '!') {
            ASSERT_EQ(WriteDevice("/sys/class/gpio/export", std::to_string(96 + pin)), 0);
            ASSERT_EQ(WriteDevice(folder + "/direction", "out"), 0);
        }
        ASSERT_EQ(WriteDevice(folder + "/value", lit ? "1" : "0"), 0);
    }

    // By the sample configuration's four values.
    float CableFeet() const {
        const float current = Volts(2) / 100.0F;
        return (3.0F * Volts(0) - 3.2F) / current / 0.052F;
    }
};

TEST_F(VoltagesTest, a_lit_led_shows_on_its_own_channel_alone) {
    for (const Led& lit : Leds) {
        Light(lit.pin, true);
        for (const Led& each : Leds) {
            EXPECT_EQ(Board().IndicatorLit(each.led), each.pin == lit.pin) << lit.name << each.name;
            EXPECT_NEAR(Volts(each.channel), each.pin == lit.pin ? 2.0 : 0.0, 0.01) << lit.name << each.name;
        }
        Light(lit.pin, false);
    }
}

TEST_F(VoltagesTest, indicator_led_open) {
    for (const Led& broken : Leds) {
        Set(std::string("indicator-led-open=") + broken.name);
        for (const Led& each : Leds) {
            Light(each.pin, true);
            EXPECT_EQ(Board().IndicatorLit(each.led), each.pin != broken.pin) << broken.name << each.name;
            EXPECT_EQ(Volts(each.channel) > 0.5F, each.pin != broken.pin) << broken.name << each.name;
        }
        Clear("indicator-led-open");
        EXPECT_GT(Volts(broken.channel), 0.5F) << broken.name;
    }
}

TEST_F(VoltagesTest, two_leds_may_be_broken_at_once) {
    Set("indicator-led-open=blue-water");
    Set("indicator-led-open=red-water");
    for (const Led& each : Leds) {
        Light(each.pin, true);
    }
    EXPECT_EQ(Volts(3), 0.0F);
    EXPECT_EQ(Volts(5), 0.0F);
    EXPECT_GT(Volts(4), 0.5F);
}

TEST_F(VoltagesTest, a_loop_with_a_broken_led_shows_its_supply_voltage) {
    EXPECT_EQ(Volts(0), 0.0F);
    Light(17, true);
    Set("indicator-led-open=blue-analyzer");
    EXPECT_EQ(Volts(2), 0.0F);
    EXPECT_GT(Volts(0), 3.0F);
}

TEST_F(VoltagesTest, cable) {
    Light(17, true);
    EXPECT_NEAR(CableFeet(), 100.0F, 5.0F);
    for (const float feet : {10.0F, 100.0F, 1000.0F}) {
        Set("cable=" + std::to_string(feet));
        EXPECT_NEAR(CableFeet(), feet, feet * 0.05F);
        Clear("cable");
    }
}

TEST_F(VoltagesTest, amplifier_dead) {
    const float quiet = Volts(7);
    Board().SetAudioPlaying(true);
    EXPECT_GT(Volts(7), quiet);
    Set("amplifier-dead");
    EXPECT_EQ(Volts(7), quiet);
}

TEST_F(VoltagesTest, pump_stage_dead) {
    const float idle = Volts(7);
    StartPump();
    EXPECT_GT(Volts(7) - idle, 0.5F);
    Set("pump-stage-dead");
    EXPECT_EQ(Volts(7), idle);
    const double angle = Board().Instrument().pumpAngle;
    const double later = Board().Seconds() + 0.05;
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > later; }));
    EXPECT_EQ(Board().Instrument().pumpAngle, angle);
}

TEST_F(VoltagesTest, stir_stage_dead) {
    const float idle = Volts(7);
    StartPwm(2, 1000000);
    EXPECT_GT(Volts(7) - idle, 0.03F);
    Set("stir-stage-dead");
    EXPECT_EQ(Volts(7), idle);
}

TEST_F(VoltagesTest, a_stalled_motor_draws_as_one_that_turns) {
    const float idle = Volts(7);
    Set("motor-stalled");
    Set("stir-stalled");
    StartPump();
    EXPECT_GT(Volts(7) - idle, 0.5F);
    const float pump = Volts(7);
    StartPwm(2, 1000000);
    EXPECT_GT(Volts(7) - pump, 0.03F);
}

TEST_F(VoltagesTest, each_rail_can_leave_its_limits) {
    constexpr struct {
        int channel;
        float low;
        float high;
    } Rails[] = {{9, 2.9F, 3.4F}, {10, 1.6F, 2.0F}, {11, 0.8F, 1.2F}, {12, 0.8F, 1.2F}};
    for (const auto& rail : Rails) {
        EXPECT_GT(Volts(rail.channel), rail.low) << rail.channel;
        EXPECT_LT(Volts(rail.channel), rail.high) << rail.channel;
        Set("rail-out=" + std::to_string(rail.channel));
        EXPECT_LT(Volts(rail.channel), rail.low) << rail.channel;
        for (const auto& other : Rails) {
            EXPECT_EQ(Volts(other.channel) < other.low, other.channel == rail.channel) << other.channel;
        }
        Clear("rail-out");
    }
}

TEST_F(VoltagesTest, gpio_taken) {
    const auto claim = [](int bank, int pin) {
        return WriteDevice("/sys/class/gpio/export", std::to_string(bank * 32 + pin));
    };
    Set("gpio-taken=3,18");
    Set("gpio-taken=2,31");
    EXPECT_EQ(claim(3, 16), 0);
    EXPECT_EQ(claim(3, 18), EBUSY);
    EXPECT_EQ(claim(2, 31), EBUSY);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioD18/value"), "!" + std::to_string(ENOENT));
    Clear("gpio-taken");
    EXPECT_EQ(claim(3, 18), 0);
}

TEST_F(VoltagesTest, all_lines_of_the_indicator_can_be_taken) {
    Set("gpio-taken=indicator");
    for (int pin = 15; pin <= 22; ++pin) {
        EXPECT_EQ(WriteDevice("/sys/class/gpio/export", std::to_string(96 + pin)), pin < 16 || pin > 21 ? 0 : EBUSY);
    }
}

}  // namespace
