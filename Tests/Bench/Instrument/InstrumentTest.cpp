#include "Bench/Instrument/Instrument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace Bench {
namespace {

static_assert(std::is_trivially_copyable_v<InstrumentState>);
static_assert(std::is_trivially_copyable_v<InstrumentSettings>);
static_assert(std::is_trivially_copyable_v<InstrumentInputs>);

// An instrument without noise, and the motions of a cycle on it.
class Instrument : public testing::Test {
protected:
    Instrument() { settings.noise = false; }

    void Wait(double seconds) { Advance(state, settings, inputs, seconds); }

    void Flush(double seconds) {
        inputs.valvePower = 0.4;
        Wait(seconds);
        inputs.valvePower = 0.0;
    }

    void Dose(double degrees) {
        inputs.pumpStepFrequency = degrees / 360.0 * MotorStepsPerTurn;
        Wait(1.0);
        inputs.pumpStepFrequency = 0.0;
    }

    void Stir(double seconds) {
        inputs.stirStepFrequency = 640.0;
        Wait(seconds);
        inputs.stirStepFrequency = 0.0;
    }

    std::int32_t Read() { return ReadDetector(state, settings, inputs); }

    // What the product makes of the three readings.
    static double Absorbance(double dark, double reference, double reacted) {
        return -std::log10((reacted - dark) / (reference - dark));
    }

    // One whole cycle by hand; the chlorine value that comes of it.
    double Cycle() {
        inputs.ledDuty = 0.0;
        const double dark = Read();
        Flush(25.0);
        inputs.ledDuty = 0.3;
        Wait(30.0);
        const double reference = Read();
        Dose(300.0);
        Stir(15.0);
        Wait(25.0);
        return settings.cellConstant * Absorbance(dark, reference, Read());
    }

    InstrumentState state;
    InstrumentSettings settings;
    InstrumentInputs inputs;
};

TEST_F(Instrument, pump_turns_by_sixteen_hundred_steps_a_revolution) {
    state.pumpAngle = 0.0;
    inputs.pumpStepFrequency = 400.0;
    Wait(1.0);
    EXPECT_DOUBLE_EQ(state.pumpAngle, 90.0);
    Wait(3.5);
    EXPECT_NEAR(state.pumpAngle, 45.0, 1e-9);
    EXPECT_NEAR(state.pumpTravel, 405.0, 1e-9);
}

TEST_F(Instrument, pump_in_reverse_turns_back_and_doses_nothing) {
    state.pumpAngle = 30.0;
    inputs.pumpStepFrequency = -400.0;
    Wait(1.0);
    EXPECT_NEAR(state.pumpAngle, 300.0, 1e-9);
    EXPECT_EQ(state.pumpTravel, 0.0);
    EXPECT_EQ(state.reagentUnmixed + state.reagentMixed, 0.0);
}

TEST_F(Instrument, flag_is_high_from_home_to_the_last_fifty_degrees_of_the_turn) {
    state.pumpAngle = 0.0;
    EXPECT_TRUE(FlagHigh(state, settings));
    state.pumpAngle = 309.9;
    EXPECT_TRUE(FlagHigh(state, settings));
    state.pumpAngle = 310.0;
    EXPECT_FALSE(FlagHigh(state, settings));
    state.pumpAngle = 359.9;
    EXPECT_FALSE(FlagHigh(state, settings));
}

TEST_F(Instrument, waiting_for_the_flag_change_finds_it_changed_in_both_directions) {
    for (const double frequency : {1600.0, 533.0, 3.7, -1600.0, -71.3}) {
        state.pumpAngle = 123.456;
        inputs.pumpStepFrequency = frequency;
        for (int edge = 0; edge < 7; ++edge) {
            const bool before = FlagHigh(state, settings);
            const double wait = SecondsUntilFlagChange(state, settings, inputs);
            ASSERT_GT(wait, 0.0);
            InstrumentState almost = state;
            Advance(almost, settings, inputs, wait * 0.999);
            ASSERT_EQ(FlagHigh(almost, settings), before) << frequency << " edge " << edge;
            Wait(wait);
            ASSERT_NE(FlagHigh(state, settings), before) << frequency << " edge " << edge;
        }
    }
}

TEST_F(Instrument, flag_of_a_turning_pump_comes_after_the_degrees_that_are_left) {
    state.pumpAngle = 325.0;
    inputs.pumpStepFrequency = 1600.0;
    EXPECT_NEAR(SecondsUntilFlagChange(state, settings, inputs), 35.0 / 360.0, 1e-5);
}

TEST_F(Instrument, resting_pump_never_changes_the_flag) {
    EXPECT_TRUE(std::isinf(SecondsUntilFlagChange(state, settings, inputs)));
}

TEST_F(Instrument, stalled_motor_takes_steps_without_turning_or_dosing) {
    settings.motorStalled = true;
    inputs.pumpStepFrequency = 1600.0;
    EXPECT_TRUE(std::isinf(SecondsUntilFlagChange(state, settings, inputs)));
    Wait(2.0);
    EXPECT_EQ(state.pumpAngle, InstrumentState{}.pumpAngle);
    EXPECT_EQ(state.reagentUnmixed, 0.0);
}

TEST_F(Instrument, stuck_flag_stays_while_the_pump_turns) {
    inputs.pumpStepFrequency = 1600.0;
    settings.flagStuckHigh = true;
    state.pumpAngle = 340.0;
    EXPECT_TRUE(FlagHigh(state, settings));
    EXPECT_TRUE(std::isinf(SecondsUntilFlagChange(state, settings, inputs)));
    settings.flagStuckHigh = false;
    settings.flagStuckLow = true;
    state.pumpAngle = 10.0;
    EXPECT_FALSE(FlagHigh(state, settings));
    EXPECT_TRUE(std::isinf(SecondsUntilFlagChange(state, settings, inputs)));
}

TEST_F(Instrument, flowing_sample_replaces_the_water_exponentially) {
    Flush(settings.flushSeconds);
    EXPECT_NEAR(state.cellChlorine, settings.chlorine * (1.0 - std::exp(-1.0)), 1e-9);
    Flush(40.0);
    EXPECT_NEAR(state.cellChlorine, settings.chlorine, 1e-4);
}

TEST_F(Instrument, closed_valve_keeps_the_water) {
    Wait(3600.0);
    EXPECT_EQ(state.cellChlorine, 0.0);
}

TEST_F(Instrument, stopped_flow_leaves_old_water_and_reagent_in_the_cell) {
    Cycle();
    const double reagent = state.reagentMixed;
    settings.sampleFlows = false;
    settings.chlorine = 2.0;
    Flush(25.0);
    EXPECT_NEAR(state.cellChlorine, 0.60, 1e-2);
    EXPECT_NEAR(state.reagentMixed, reagent, 0.1);
}

TEST_F(Instrument, flush_carries_reagent_and_color_away) {
    Cycle();
    ASSERT_GT(state.color, 0.5);
    Flush(40.0);
    EXPECT_LT(state.color, 1e-3);
    EXPECT_LT(state.reagentMixed + state.reagentUnmixed, 0.02);
}

TEST_F(Instrument, pump_angle_doses_reagent) {
    Dose(300.0);
    EXPECT_NEAR(state.reagentUnmixed + state.reagentMixed, settings.reagentPerTurn * 300.0 / 360.0, 1e-9);
}

TEST_F(Instrument, stir_bar_mixes_and_rest_hardly_does) {
    Dose(300.0);
    InstrumentState still = state;
    Advance(still, settings, inputs, 6.0);
    Stir(6.0);
    EXPECT_GT(state.reagentMixed, 98.0);
    EXPECT_LT(still.reagentMixed, 5.0);
}

TEST_F(Instrument, color_develops_with_its_time_constant) {
    state.cellChlorine = 0.5;
    state.reagentMixed = 100.0;
    Wait(settings.developSeconds);
    EXPECT_NEAR(state.color, 0.5 * (1.0 - std::exp(-1.0)), 1e-9);
    Wait(60.0);
    EXPECT_NEAR(state.color, 0.5, 1e-6);
}

TEST_F(Instrument, unreacted_water_has_no_color) {
    Flush(60.0);
    Wait(120.0);
    EXPECT_EQ(state.color, 0.0);
    EXPECT_NEAR(CellAbsorbance(state, settings), settings.background, 1e-9);
}

TEST_F(Instrument, full_development_absorbs_by_the_cell_constant) {
    for (const double constant : {2.4, 0.8, 1714.818182}) {
        settings.cellConstant = constant;
        state.color = 0.6;
        EXPECT_DOUBLE_EQ(CellAbsorbance(state, settings), settings.background + 0.6 / constant);
    }
}

TEST_F(Instrument, reagent_in_short_supply_colors_in_proportion) {
    state.cellChlorine = 2.0;
    state.reagentMixed = 10.0;
    Wait(120.0);
    EXPECT_NEAR(state.color, 10.0 * settings.reagentCapacity, 1e-6);
    state.reagentMixed = 20.0;
    Wait(120.0);
    EXPECT_NEAR(state.color, 20.0 * settings.reagentCapacity, 1e-6);
}

TEST_F(Instrument, dry_reagent_bottle_lets_the_value_fall_towards_zero) {
    const double full = Cycle();
    settings.reagentEmpty = true;
    double last = full;
    for (int cycle = 0; cycle < 5; ++cycle) {
        last = Cycle();
    }
    EXPECT_NEAR(full, 0.60, 0.005);
    EXPECT_NEAR(last, 0.0, 0.01);
}

TEST_F(Instrument, refilled_bottle_brings_the_value_back) {
    settings.reagentEmpty = true;
    for (int cycle = 0; cycle < 6; ++cycle) {
        Cycle();
    }
    settings.reagentEmpty = false;
    inputs.valvePower = 0.4;
    Dose(5 * 360.0);
    EXPECT_NEAR(Cycle(), 0.60, 0.005);
}

TEST_F(Instrument, bubbles_of_the_dose_scatter_light_until_they_have_risen) {
    Dose(300.0);
    const double fresh = state.bubbles;
    EXPECT_GT(fresh, 0.001);
    Stir(25.0);
    EXPECT_LT(state.bubbles, fresh / 1000.0);
}

TEST_F(Instrument, stuck_bubbles_stay_and_flicker) {
    settings.noise = true;
    settings.stuckBubbles = 0.2;
    inputs.ledDuty = 0.3;
    Stir(600.0);
    double low = 1e9;
    double high = 0.0;
    for (int reading = 0; reading < 50; ++reading) {
        const double count = Read();
        low = std::min(low, count);
        high = std::max(high, count);
    }
    EXPECT_LT(high, 0.3 * settings.lightAtFullDuty);
    EXPECT_GT(high - low, 100000.0);
}

TEST_F(Instrument, light_grows_with_the_duty) {
    settings.ledDroop = 0.0;
    settings.background = 0.0;
    for (const double duty : {0.1, 0.25, 1.0}) {
        inputs.ledDuty = duty;
        EXPECT_NEAR(Read(), settings.darkCount + duty * settings.lightAtFullDuty, 0.51);
    }
}

TEST_F(Instrument, led_loses_its_droop_while_it_warms) {
    inputs.ledDuty = 1.0;
    const double cold = Read() - settings.darkCount;
    Wait(60.0);
    const double warm = Read() - settings.darkCount;
    EXPECT_NEAR(warm / cold, 1.0 - settings.ledDroop, 1e-5);
}

TEST_F(Instrument, led_drifts_with_the_hours) {
    settings.ledDriftPerHour = -0.1;
    settings.ledDroop = 0.0;
    inputs.ledDuty = 0.5;
    const double fresh = Read() - settings.darkCount;
    Wait(7200.0);
    EXPECT_NEAR((Read() - settings.darkCount) / fresh, 0.8, 1e-5);
}

TEST_F(Instrument, disabled_led_leaves_the_dark_count) { EXPECT_EQ(Read(), 1500); }

TEST_F(Instrument, dead_led_leaves_the_dark_count_at_any_duty) {
    settings.ledDead = true;
    inputs.ledDuty = 1.0;
    EXPECT_EQ(Read(), 1500);
}

TEST_F(Instrument, dark_count_may_be_below_zero) {
    settings.darkCount = -321.0;
    EXPECT_EQ(Read(), -321);
}

TEST_F(Instrument, converter_stops_at_both_ends_of_its_range) {
    inputs.ledDuty = 1.0;
    settings.lightAtFullDuty = 1e9;
    EXPECT_EQ(Read(), 16777215);
    inputs.ledDuty = 0.0;
    settings.darkCount = -1e9;
    EXPECT_EQ(Read(), -16777216);
}

TEST_F(Instrument, saturated_detector_reads_full_scale_in_the_dark) {
    settings.detectorSaturated = true;
    EXPECT_EQ(Read(), 16777215);
}

TEST_F(Instrument, same_seed_gives_the_same_noise) {
    settings.noise = true;
    inputs.ledDuty = 0.3;
    InstrumentState other = state;
    for (int reading = 0; reading < 100; ++reading) {
        ASSERT_EQ(Read(), ReadDetector(other, settings, inputs));
    }
    InstrumentSettings reseeded = settings;
    reseeded.seed = 2;
    int different = 0;
    for (int reading = 0; reading < 100; ++reading) {
        different += Read() != ReadDetector(other, reseeded, inputs) ? 1 : 0;
    }
    EXPECT_GT(different, 90);
}

TEST_F(Instrument, noise_has_the_deviation_that_is_set_and_no_bias) {
    settings.noise = true;
    settings.readNoise = 60.0;
    double sum = 0.0;
    double squares = 0.0;
    constexpr int Readings = 20000;
    for (int reading = 0; reading < Readings; ++reading) {
        const double deviation = Read() - settings.darkCount;
        sum += deviation;
        squares += deviation * deviation;
    }
    EXPECT_NEAR(sum / Readings, 0.0, 2.0);
    EXPECT_NEAR(std::sqrt(squares / Readings), 60.0, 1.5);
}

TEST_F(Instrument, noise_switched_off_makes_every_reading_exact) {
    inputs.ledDuty = 0.3;
    const std::int32_t first = Read();
    for (int reading = 0; reading < 10; ++reading) {
        ASSERT_EQ(Read(), first);
    }
}

TEST_F(Instrument, one_long_step_is_as_good_as_many_short_ones) {
    inputs = {0.4, 533.0, 640.0, 0.5, false};
    state.cellChlorine = 0.1;
    InstrumentState fine = state;
    Wait(30.0);
    for (int step = 0; step < 30000; ++step) {
        Advance(fine, settings, inputs, 0.001);
    }
    EXPECT_NEAR(state.pumpAngle, fine.pumpAngle, 1e-6);
    EXPECT_NEAR(state.cellChlorine, fine.cellChlorine, 1e-9);
    EXPECT_NEAR(state.reagentMixed, fine.reagentMixed, 1e-6);
    EXPECT_NEAR(state.color, fine.color, 1e-4);
    EXPECT_NEAR(state.bubbles, fine.bubbles, 1e-9);
    EXPECT_NEAR(state.ledWarmth, fine.ledWarmth, 1e-9);
}

TEST_F(Instrument, a_long_step_develops_the_color_of_short_ones) {
    state.cellChlorine = 0.9;
    Dose(300.0);
    inputs.stirStepFrequency = 640.0;
    InstrumentState fine = state;
    Wait(8.0);
    for (int step = 0; step < 8000; ++step) {
        Advance(fine, settings, inputs, 0.001);
    }
    EXPECT_NEAR(state.color, fine.color, 5e-4);
}

TEST_F(Instrument, no_time_changes_nothing) {
    inputs = {0.4, 533.0, 640.0, 0.5, false};
    for (const double seconds : {0.0, -5.0, std::nan(""), static_cast<double>(INFINITY)}) {
        Wait(seconds);
        EXPECT_EQ(state.seconds, 0.0);
        EXPECT_EQ(state.pumpAngle, InstrumentState{}.pumpAngle);
        EXPECT_EQ(state.cellChlorine, 0.0);
    }
}

TEST_F(Instrument, supply_measure_rises_with_each_load) {
    const double idle = MultiplexerVoltage(settings, inputs, 7);
    inputs.audioPlaying = true;
    const double audio = MultiplexerVoltage(settings, inputs, 7);
    EXPECT_GT(audio - idle, 0.01);
    inputs = {};
    inputs.pumpStepFrequency = 1000.0;
    EXPECT_GT(MultiplexerVoltage(settings, inputs, 7) - idle, 0.5);
    inputs = {};
    inputs.stirStepFrequency = 1000.0;
    EXPECT_GT(MultiplexerVoltage(settings, inputs, 7) - idle, 0.03);
}

TEST_F(Instrument, rails_stay_within_their_limits_under_full_load) {
    inputs = {1.0, 1000.0, 1000.0, 1.0, true};
    EXPECT_NEAR(MultiplexerVoltage(settings, inputs, 9), 3.3, 0.1);
    EXPECT_NEAR(MultiplexerVoltage(settings, inputs, 10), 1.8, 0.1);
    EXPECT_NEAR(MultiplexerVoltage(settings, inputs, 11), 1.0, 0.1);
    EXPECT_NEAR(MultiplexerVoltage(settings, inputs, 12), 1.0, 0.1);
}

TEST_F(Instrument, each_rail_follows_its_own_setting) {
    settings.rail33 = 2.5;
    settings.rail18 = 1.5;
    settings.railCore10 = 0.7;
    settings.rail10 = 1.3;
    EXPECT_DOUBLE_EQ(MultiplexerVoltage(settings, inputs, 9), 2.5);
    EXPECT_DOUBLE_EQ(MultiplexerVoltage(settings, inputs, 10), 1.5);
    EXPECT_DOUBLE_EQ(MultiplexerVoltage(settings, inputs, 11), 0.7);
    EXPECT_DOUBLE_EQ(MultiplexerVoltage(settings, inputs, 12), 1.3);
    EXPECT_EQ(MultiplexerVoltage(settings, inputs, 8), 0.0);
}

TEST_F(Instrument, whole_cycle_finds_the_chlorine_of_the_water) {
    settings.noise = true;
    for (const double constant : {2.4, 1.5}) {
        settings.cellConstant = constant;
        for (const double chlorine : {0.10, 0.35, 0.60, 0.95}) {
            settings.chlorine = chlorine;
            Cycle();
            EXPECT_NEAR(Cycle(), chlorine, 0.02) << "cell constant " << constant;
        }
    }
}

TEST_F(Instrument, change_of_the_water_shows_in_the_next_cycle) {
    Cycle();
    settings.chlorine = 0.10;
    EXPECT_NEAR(Cycle(), 0.10, 0.005);
}

TEST_F(Instrument, without_the_stir_bar_the_value_comes_out_low) {
    Cycle();
    Flush(25.0);
    inputs.ledDuty = 0.3;
    Wait(30.0);
    const double reference = Read();
    Dose(300.0);
    Wait(60.0);
    EXPECT_LT(settings.cellConstant * Absorbance(settings.darkCount, reference, Read()), 0.4);
}

TEST_F(Instrument, without_flow_the_colored_water_is_its_own_reference) {
    Cycle();
    settings.sampleFlows = false;
    EXPECT_NEAR(Cycle(), 0.0, 0.02);
}

}  // namespace
}  // namespace Bench
