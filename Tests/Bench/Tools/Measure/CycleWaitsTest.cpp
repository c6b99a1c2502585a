// The sum of a cycle's waits, compared with sums made by hand.
#include "Bench/Tools/Measure/CycleWaits.h"

#include <gtest/gtest.h>

#include "Tests/Support/ReadFile.h"

namespace {

using Bench::CycleSettings;
using Bench::StepSettings;

Bench::SettingsFile Sample() { return Bench::SettingsFile(ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml")); }

CycleSettings OneStep(const StepSettings& step) {
    CycleSettings settings;
    settings.steps = {step};
    settings.settle = 500.0;
    settings.switchDelay = 250.0;
    return settings;
}

StepSettings Sampled(double duration) {
    StepSettings step;
    step.duration = duration;
    step.sampled = true;
    return step;
}

double Waits(const StepSettings& step) { return PrescribedWaits(OneStep(step), 0.0, 0).milliseconds; }

}  // namespace

TEST(CycleWaits, of_a_sampled_step_are_whole_readings) {
    EXPECT_EQ(Waits(Sampled(6000.0)), 6000.0);
    EXPECT_EQ(Waits(Sampled(6001.0)), 6250.0);
    EXPECT_EQ(Waits(Sampled(0.0)), 0.0);
}

TEST(CycleWaits, of_a_step_are_those_of_its_longest_worker) {
    StepSettings step = Sampled(100.0);
    step.stirred = true;
    EXPECT_EQ(Waits(step), 250.0);
    step.sampled = false;
    EXPECT_EQ(Waits(step), 100.0);
    step.valveOpen = true;
    EXPECT_EQ(Waits(step), 250.0);
}

TEST(CycleWaits, of_a_turn_are_those_of_its_angle_but_no_longer_than_the_step) {
    StepSettings step;
    step.motorAngle = 330.0;
    step.motorSpeed = 60.0;
    step.duration = 6000.0;
    EXPECT_EQ(Waits(step), 5500.0);
    step.duration = 1000.0;
    EXPECT_EQ(Waits(step), 1000.0);
    step.motorAngle = 0.5;
    EXPECT_EQ(Waits(step), 0.0);
}

TEST(CycleWaits, of_homing_are_the_way_to_the_edge_and_five_degrees) {
    StepSettings step;
    step.motorAngle = 360.0;
    step.motorSpeed = 30.0;
    step.duration = 15000.0;
    step.homed = true;
    // 133 of 1600 steps a second, and 166 ms.
    EXPECT_NEAR(PrescribedWaits(OneStep(step), 335.0, 0).milliseconds, 25.0 / 360.0 * 1600.0 / 133.0 * 1000.0 + 166.0,
                1e-6);
    EXPECT_EQ(PrescribedWaits(OneStep(step), 335.0, 0).pumpAngle, 5.0);
}

TEST(CycleWaits, of_the_adjustment_are_those_of_its_trials) {
    StepSettings step = Sampled(2000.0);
    step.name = "LEDAdjustment";
    EXPECT_EQ(PrescribedWaits(OneStep(step), 0.0, 3).milliseconds, 7500.0);
    CycleSettings settings = OneStep(step);
    settings.settle = 1999.0;  // from a second on only whole ones are waited
    EXPECT_EQ(PrescribedWaits(settings, 0.0, 1).milliseconds, 3000.0);
    EXPECT_EQ(PrescribedReadings(settings, 3), 24);
}

TEST(CycleWaits, of_the_sample_configuration_add_up) {
    std::string error;
    const std::optional<CycleSettings> settings = Bench::ReadCycleSettings(Sample(), error);
    ASSERT_TRUE(settings) << error;
    const Bench::CycleWaits waits = PrescribedWaits(*settings, 335.0, 2);
    const double homing = 25.0 / 360.0 * 1600.0 / 133.0 * 1000.0 + 166.0;
    EXPECT_NEAR(waits.milliseconds, 141500.0 + homing + 2 * 2500.0, 1e-6);
    EXPECT_EQ(waits.pumpAngle, 335.0);
    EXPECT_EQ(PrescribedReadings(*settings, 2), 4 * (6 + 1 + 5 + 15 + 8 + 1 + 1 + 40 + 8 + 1 + 1) + 2 * 8);
}

TEST(CycleWaits, need_every_step_and_item) {
    std::string error;
    EXPECT_FALSE(Bench::ReadCycleSettings(Bench::SettingsFile("<A/>"), error));
    EXPECT_EQ(error, "the configuration has no item \"LEDSettleTime\"");
    error.clear();
    Bench::SettingsFile incomplete = Sample();
    incomplete.Remove("Motor Speed");
    EXPECT_FALSE(Bench::ReadCycleSettings(incomplete, error));
    EXPECT_EQ(error, "the step \"" + incomplete.Find("Step").value_or("") + "\" has no item \"Motor Speed\"");
    std::string text = Sample().Text();
    const std::size_t last = text.rfind("<MEASUREMENT_STEP>");
    text.erase(last, text.find("</MEASUREMENT_STEP>", last) + 19 - last);
    EXPECT_FALSE(Bench::ReadCycleSettings(Bench::SettingsFile(text), error));
    EXPECT_EQ(error, "the configuration has no step \"SanityCheck\"");
}

TEST(CycleWaits, know_every_step) {
    std::string error;
    std::string text = Sample().Text();
    text.insert(text.rfind("<MEASUREMENT_STEP>"),
                "<MEASUREMENT_STEP><INFO_ITEM name=\"Step\" value=\"Rinsing\"/></MEASUREMENT_STEP>");
    EXPECT_FALSE(Bench::ReadCycleSettings(Bench::SettingsFile(text), error));
    EXPECT_EQ(error, "the configuration has an unknown step \"Rinsing\"");
}
