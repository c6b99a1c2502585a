#include "System/MeasurementEngine/MeasurementLEDController.h"

#include "Drivers/PwmChannel.h"
#include "Drivers/SpiDevice.h"
#include "System/MeasurementEngine/DetectorProcessing.h"
#include "System/MeasurementEngine/EmitterProcessing.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"

namespace {

const char* const Enable = "/sys/class/pwm/pwmchip0/pwm0/enable=";
const char* const Duty = "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=";
const char* const Period = "/sys/class/pwm/pwmchip0/pwm0/period=";

class Emitter : public MeasurementFixture {
protected:
    Emitter() {
        emitter.SetPwm(&pwm);
        step.stepType = LED_ADJUSTMENT_STEP;
        step.adcMonitorOn = true;
        step.ledOn = true;
        step.duration = 1;
        Board().ClearTrace();
    }

    void Switch(bool on) {
        step.ledOn = on;
        emitter.SetStep(&step);
        ASSERT_TRUE(emitter.Start());
        emitter.Join();
    }

    PwmChannel pwm{0, 1000.0F, 50.0F};
    EmitterProcessing emitter;
    StepParameters step;
};

class LEDController : public Emitter {
protected:
    LEDController() {
        detector.SetSpiDevice(&device);
        controller.SetDetector(&detector);
        controller.SetEmitter(&emitter);
        controller.SetSettleTime(0);
        controller.SetStep(&step);
        Board().ClearTrace();
    }

    void Adjust(const std::vector<std::int32_t>& counts) {
        std::vector<Bench::SpiAnswer> answers;
        for (const std::int32_t count : counts) {
            answers.push_back(Bench::SpiAnswer::Count(count));
        }
        Board().ScriptSpiRead(answers);
        Adjust();
    }

    void Adjust() {
        ASSERT_TRUE(controller.Start());
        controller.Join();
    }

    // Every trial sets the duty again: first to 0, then to what it tries, in nanoseconds of the period.
    Texts Trials() const {
        Texts trials;
        bool reset = false;
        for (const std::string& line : TraceOf(Duty)) {
            if (reset) {
                trials.push_back(line.substr(std::string(Duty).size()));
            }
            reset = !reset;
        }
        return trials;
    }

    // From the end of the emitter's switching to the first word of the detector.
    double SettledSeconds(std::uint32_t settleTime) {
        controller.SetSettleTime(settleTime);
        Adjust({2000000});
        return TimeOf("spi write a080") - TimeOf(std::string(Enable) + "1", true);
    }

    SpiDevice device;
    DetectorProcessing detector;
    MeasurementLEDController controller;
};

}  // namespace

TEST_F(Emitter, is_named_after_its_class) { EXPECT_EQ(emitter.GetThreadName(), "EmitterProcessing"); }

TEST_F(Emitter, switches_the_led_off_and_leaves_it_so) {
    Switch(false);
    EXPECT_EQ(Board().Trace(), Texts{std::string(Enable) + "0"});
    EXPECT_FALSE(Board().Pwm(0).enabled);
}

TEST_F(Emitter, switches_the_led_on_and_leaves_it_so) {
    pwm.Enable(false);
    Board().ClearTrace();
    Switch(true);
    EXPECT_EQ(Board().Trace(), Texts{std::string(Enable) + "1"});
    EXPECT_TRUE(Board().Pwm(0).enabled);
}

TEST_F(Emitter, does_not_touch_a_led_that_is_as_it_should_be) {
    Switch(true);
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Emitter, sets_the_duty_at_the_present_frequency) {
    emitter.SetDutyCycle(25.0F);
    EXPECT_EQ(Board().Trace(),
              (Texts{std::string(Enable) + "0", std::string(Duty) + "0", std::string(Period) + "1000000",
                     std::string(Duty) + "250000", std::string(Enable) + "1"}));
}

TEST_F(Emitter, sets_the_frequency_at_the_present_duty) {
    emitter.SetFrequency(500.0F);
    EXPECT_EQ(Board().Pwm(0).period, 2000000U);
    EXPECT_EQ(Board().Pwm(0).duty, 1000000U);
}

TEST_F(Emitter, without_a_channel_no_thread_runs_and_nothing_is_set) {
    emitter.SetPwm(nullptr);
    emitter.SetDutyCycle(25.0F);
    emitter.SetFrequency(25.0F);
    emitter.SetStep(&step);
    EXPECT_FALSE(emitter.Start());
    EXPECT_EQ(emitter.GetThreadId(), pthread_t{0});
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Emitter, without_a_step_no_thread_runs) {
    EXPECT_FALSE(emitter.Start());
    EXPECT_EQ(emitter.GetThreadId(), pthread_t{0});
}

TEST_F(LEDController, one_trial_in_the_band_and_the_duty_does_not_change) {
    Adjust({2000000});
    EXPECT_EQ(controller.GetDutyCycle(), 50.0);
    EXPECT_EQ(Trials(), Texts{"500000"});
}

TEST_F(LEDController, both_edges_of_the_band_count_as_inside) {
    Adjust({1500000});
    EXPECT_EQ(controller.GetDutyCycle(), 50.0);
    Adjust({2500000});
    EXPECT_EQ(controller.GetDutyCycle(), 50.0);
    EXPECT_EQ(Trials(), (Texts{"500000", "500000"}));
}

TEST_F(LEDController, a_count_below_the_band_walks_up) {
    Adjust({1499999, 1500000});
    EXPECT_EQ(controller.GetDutyCycle(), 52.0);
    EXPECT_EQ(Trials(), (Texts{"500000", "520000"}));
}

TEST_F(LEDController, a_count_above_the_band_walks_down) {
    Adjust({2500001, 2500000});
    EXPECT_EQ(controller.GetDutyCycle(), 48.0);
    EXPECT_EQ(Trials(), (Texts{"500000", "480000"}));
}

TEST_F(LEDController, a_dark_detector_takes_25_trials_to_100_and_stops_there) {
    SetFault("led-dead");
    Adjust();
    EXPECT_EQ(controller.GetDutyCycle(), 100.0);
    const Texts trials = Trials();
    ASSERT_EQ(trials.size(), 1U + 25U);
    EXPECT_EQ(trials.front(), "500000");
    EXPECT_EQ(trials.back(), "1000000");
    EXPECT_EQ(controller.GetAdjustTime(), 26U);
}

TEST_F(LEDController, finds_the_band_with_the_instruments_own_light) {
    controller.SetDutyCycle(80.0);
    Adjust();
    EXPECT_LE(detector.GetRawMean(), 2500000.0);
    EXPECT_GE(detector.GetRawMean(), 1500000.0);
    EXPECT_LT(controller.GetDutyCycle(), 80.0);
}

TEST_F(LEDController, too_bright_at_no_duty_ends_without_a_further_trial) {
    controller.SetDutyCycle(0.0);
    Adjust({2500001});
    EXPECT_EQ(controller.GetDutyCycle(), 0.0);
    EXPECT_EQ(Trials(), Texts{"0"});
}

TEST_F(LEDController, a_trial_below_no_duty_is_asked_for_as_it_is) {
    controller.SetDutyCycle(1.0);
    Adjust({2500001, 2500001});
    EXPECT_EQ(controller.GetDutyCycle(), 0.0);
    const Texts trials = Trials();
    ASSERT_EQ(trials.size(), 2U);
    EXPECT_EQ(trials[0], "10000");
    EXPECT_EQ(trials[1].substr(0, 6), "-10000");
}

TEST_F(LEDController, a_duty_below_zero_stays_where_its_trial_is_in_the_band) {
    controller.SetDutyCycle(1.0);
    Adjust({2500001, 2000000});
    EXPECT_EQ(controller.GetDutyCycle(), -1.0);
}

TEST_F(LEDController, a_trial_above_full_duty_is_asked_for_as_it_is) {
    controller.SetDutyCycle(99.0);
    Adjust({0, 0});
    EXPECT_EQ(controller.GetDutyCycle(), 100.0);
    const Texts trials = Trials();
    ASSERT_EQ(trials.size(), 2U);
    EXPECT_EQ(trials[1].substr(0, 7), "1010000");
}

TEST_F(LEDController, the_upper_edge_is_not_looked_at_after_the_walk_up) {
    controller.SetAdjustStep(30.0);
    Adjust({1499999, 16000000});
    EXPECT_EQ(controller.GetDutyCycle(), 80.0);
    EXPECT_EQ(Trials().size(), 2U);
}

TEST_F(LEDController, walks_down_to_the_end_and_then_up) {
    controller.SetAdjustStep(10.0);
    Adjust({9000000, 9000000, 100, 2000000});
    EXPECT_EQ(controller.GetDutyCycle(), 40.0);
    EXPECT_EQ(Trials(), (Texts{"500000", "400000", "300000", "400000"}));
}

TEST_F(LEDController, the_dark_count_does_not_enter_the_comparison) {
    controller.SetDarkCount(1900000.0);
    Adjust({2000000});
    EXPECT_EQ(Trials().size(), 1U);
}

TEST_F(LEDController, the_band_follows_target_and_deviation) {
    controller.SetTargetLevel(1000.0);
    controller.SetDeviation(10.0);
    Adjust({1101, 1100});
    EXPECT_EQ(controller.GetDutyCycle(), 48.0);
}

TEST_F(LEDController, a_step_that_does_not_move_the_duty_ends_the_walk_with_a_line_in_the_log) {
    for (const double adjustStep : {0.0, -2.0, 1e-300}) {
        controller.SetAdjustStep(adjustStep);
        Adjust({0});
        EXPECT_EQ(controller.GetDutyCycle(), 50.0);
    }
    const std::string line =
        "MeasurementLEDController::AdjustLEDDutyCycle  LEDDutycycleAdjustStep does not move the duty cycle";
    EXPECT_EQ(LogLines(), (Texts{line, line, line}));
}

TEST_F(LEDController, the_led_off_in_the_step_decides_after_the_duty_is_set) {
    step.ledOn = false;
    Adjust({2000000});
    EXPECT_FALSE(Board().Pwm(0).enabled);
    EXPECT_EQ(Board().Pwm(0).duty, 500000U);
}

TEST_F(LEDController, adds_up_duration_and_settle_time_of_each_trial) {
    step.duration = 20;
    controller.SetSettleTime(1999);
    Adjust({0, 2000000});
    EXPECT_EQ(controller.GetAdjustTime(), 2U * (20U + 1999U));
}

TEST_F(LEDController, without_the_adc_flag_it_refuses_and_the_duty_stays) {
    step.adcMonitorOn = false;
    EXPECT_FALSE(controller.Start());
    EXPECT_EQ(controller.GetThreadId(), pthread_t{0});
    EXPECT_EQ(controller.GetDutyCycle(), 50.0);
    EXPECT_EQ(controller.GetAdjustTime(), 0U);
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(LEDController, a_refused_start_forgets_step_detector_and_emitter) {
    step.adcMonitorOn = false;
    EXPECT_FALSE(controller.Start());
    step.adcMonitorOn = true;
    controller.SetStep(&step);
    EXPECT_FALSE(controller.Start());
    controller.SetStep(&step);
    controller.SetDetector(&detector);
    EXPECT_FALSE(controller.Start());
}

TEST_F(LEDController, without_emitter_or_detector_it_refuses) {
    controller.SetEmitter(nullptr);
    EXPECT_FALSE(controller.Start());
    controller.SetStep(&step);
    controller.SetEmitter(&emitter);
    controller.SetDetector(nullptr);
    EXPECT_FALSE(controller.Start());
}

TEST_F(LEDController, without_a_duration_it_reads_nothing_and_walks_to_full_duty) {
    step.duration = 0;
    controller.SetAdjustStep(25.0);
    Adjust();
    EXPECT_EQ(controller.GetDutyCycle(), 100.0);
    EXPECT_EQ(TraceOf("spi"), Texts{});
}

TEST_F(LEDController, a_settle_time_of_1999_ms_waits_one_second) { EXPECT_THAT(SettledSeconds(1999), IsWaitOf(1.0)); }

TEST_F(LEDController, a_settle_time_below_a_second_is_waited_in_full) {
    EXPECT_THAT(SettledSeconds(999), IsWaitOf(0.999));
}

TEST(EstimateDutyCycle, corrects_in_proportion_to_the_counts_above_dark) {
    EXPECT_EQ(MeasurementLEDController::EstimateDutyCycle(1100.0, 40.0, 100.0, 2100.0), 80.0);
    EXPECT_EQ(MeasurementLEDController::EstimateDutyCycle(2100.0, 40.0, 100.0, 1100.0), 20.0);
}

TEST(EstimateDutyCycle, a_reference_equal_to_dark_gives_100) {
    EXPECT_EQ(MeasurementLEDController::EstimateDutyCycle(100.0, 40.0, 100.0, 2000000.0), 100.0);
}

TEST(EstimateDutyCycle, a_target_below_dark_gives_0) {
    EXPECT_EQ(MeasurementLEDController::EstimateDutyCycle(200.0, 40.0, 100.0, 50.0), 0.0);
}

TEST(EstimateDutyCycle, never_asks_for_more_than_100) {
    EXPECT_EQ(MeasurementLEDController::EstimateDutyCycle(101.0, 40.0, 100.0, 2000000.0), 100.0);
}
