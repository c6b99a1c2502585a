#include <iterator>

#include "System/MeasurementEngine/SampleStatistics.h"
#include "Tests/System/MeasurementEngine/CycleFixture.h"

namespace {

const std::string Pwm = "/sys/class/pwm/pwmchip0/";
const std::string LEDValuesNotSet = "MeasurementStepController::InitializeEmitterSystem  initial values not set";

// No two settings have the same value.
class CycleSettings : public Cycle {
protected:
    CycleSettings() {
        settings.keys["PrimeCycleCount"] = "7";
        settings.keys["EmitterDefaultFrequency"] = "1250.0";
        settings.keys["EmitterDefaultDutyCycle"] = "44.0";
        settings.keys["SampleSwitchDelay"] = "900";
        settings.keys["SampleSwitchDutyCycle"] = "35.0";
        settings.keys["DarkHighRejectNum"] = "1";
        settings.keys["DarkLowRejectNum"] = "2";
        settings.keys["RefHighRejectNum"] = "3";
        settings.keys["RefLowRejectNum"] = "4";
        settings.keys["SampleHighRejectNum"] = "5";
        settings.keys["SampleLowRejectNum"] = "6";
        settings.keys["DetectorOutputLevel"] = "1600000.0";
        settings.keys["DetectorOutputLevelDev"] = "10.0";
        settings.keys["LEDDutycycleAdjustStep"] = "3.0";
        settings.keys["LEDSettleTime"] = "70";
    }

    void RunWith(const std::string& key, const std::string& value) {
        settings.keys[key] = value;
        Install();
        Run();
        End();
    }

    void Sample(const std::string& step, const std::string& duration) {
        settings.Step(step)["ADC Monitor On"] = "true";
        settings.Step(step)["Duration"] = duration;
    }

    // Of the last cycle's step, ascending.
    std::vector<double> CountsOf(StepType type) {
        std::vector<double> counts;
        for (const StepResults& results : listener.StepData()) {
            if (results.GetStep().stepType == type) {
                for (const DetectorInformation& sample : results.GetSamples()) {
                    counts.push_back(sample.GetCount());
                }
            }
        }
        std::sort(counts.begin(), counts.end());
        return counts;
    }

    void OpenValve() { settings.Step("VerifyFlow")["Sample Valve On"] = "true"; }
};

const Texts OpenedAndHeld{Pwm + "pwm3/duty_cycle=0", Pwm + "pwm3/duty_cycle=1000000", Pwm + "pwm3/duty_cycle=0",
                          Pwm + "pwm3/duty_cycle=350000"};
const Texts OpenedOnly{Pwm + "pwm3/duty_cycle=0", Pwm + "pwm3/duty_cycle=1000000"};

}  // namespace

TEST_F(CycleSettings, led_runs_at_its_frequency_and_duty_on_its_channel) {
    Install();
    Run();
    End();
    EXPECT_EQ(TraceOf("pwm0/period="), Texts{Pwm + "pwm0/period=800000"});
    EXPECT_EQ(TraceOf("pwm0/duty_cycle="), (Texts{Pwm + "pwm0/duty_cycle=0", Pwm + "pwm0/duty_cycle=352000"}));
}

TEST_F(CycleSettings, valve_drops_to_its_hold_duty_after_its_delay) {
    OpenValve();
    Install();
    Run();
    End();
    EXPECT_EQ(TraceOf("pwm3/duty_cycle="), OpenedAndHeld);
    EXPECT_THAT(Between(Pwm + "pwm3/duty_cycle=1000000", Pwm + "pwm3/duty_cycle=350000"), IsWaitOf(0.9));
}

TEST_F(CycleSettings, each_count_is_trimmed_by_its_own_two_numbers) {
    for (const char* name : {"DarkCountMeasurement", "ReferenceOpticalMeasurement", "SampleOpticalMeasurement"}) {
        Sample(name, "10000");
    }
    std::vector<Bench::SpiAnswer> answers;
    for (int count = 1; count < 500; ++count) {
        answers.push_back(Bench::SpiAnswer::Count(count * count));  // so that each pair leaves another mean
    }
    Board().ScriptSpiRead(answers);
    Install();
    Run();
    End();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].GetDarkCount(), TrimmedMean(CountsOf(DARK_COUNT_MEASUREMENT_STEP), 1, 2));
    EXPECT_EQ(results[0].GetReferenceCount(), TrimmedMean(CountsOf(REFERENCE_OPTICAL_MEASUREMENT_STEP), 3, 4));
    EXPECT_EQ(results[0].GetSampleCount(), TrimmedMean(CountsOf(SAMPLE_OPTICAL_MEASUREMENT_STEP), 5, 6));
}

TEST_F(CycleSettings, led_adjustment_uses_level_deviation_step_and_settle_time) {
    Sample("LEDAdjustment", "20");
    // The band is 1,440,000 to 1,760,000.
    Board().ScriptSpiRead(
        {Bench::SpiAnswer::Count(1761000), Bench::SpiAnswer::Count(1439000), Bench::SpiAnswer::Count(1441000)});
    Install();
    Run();
    End();
    EXPECT_EQ(StatusTexts()[7], "LED Adjustment Results: LED DutyCycle = 44.000000%% and LED Adjust Time = 270ms");
    EXPECT_EQ(TraceOf("pwm0/duty_cycle="),
              (Texts{Pwm + "pwm0/duty_cycle=0", Pwm + "pwm0/duty_cycle=352000", Pwm + "pwm0/duty_cycle=0",
                     Pwm + "pwm0/duty_cycle=352000", Pwm + "pwm0/duty_cycle=0", Pwm + "pwm0/duty_cycle=328000",
                     Pwm + "pwm0/duty_cycle=0", Pwm + "pwm0/duty_cycle=352000"}));
}

TEST_F(CycleSettings, reference_moves_the_duty_toward_the_level) {
    for (const char* key : {"DarkHighRejectNum", "DarkLowRejectNum", "RefHighRejectNum", "RefLowRejectNum"}) {
        settings.keys[key] = "0";
    }
    Sample("DarkCountMeasurement", "1");
    Sample("ReferenceOpticalMeasurement", "1");
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(1000), Bench::SpiAnswer::Count(2001000)});
    Install();
    Run();
    End();
    // (1600000 - 1000) * 44 / 2000000
    EXPECT_EQ(StatusTexts().back(), "End of Measurement Cycle: LED DutyCycle = 35.178000%% and LED Adjust Time = 0ms");
}

TEST_F(CycleSettings, priming_takes_its_revolutions_and_the_homing_its_speed) {
    settings.keys["SampleSwitchDelay"] = "0";
    settings.keys["LEDSettleTime"] = "0";
    Install();
    EXPECT_TRUE(control->PrimeSystem());
    EXPECT_THAT(Between(Pwm + "pwm1/enable=1", Pwm + "pwm1/enable=0"), IsWaitOf(7.0));
    const Texts periods = TraceOf("pwm1/period=");
    ASSERT_GE(periods.size(), 2U);
    EXPECT_EQ(periods[0], Pwm + "pwm1/period=625000");
    EXPECT_EQ(periods[1], Pwm + "pwm1/period=7518797");  // 30 degrees a second are 133 whole steps
}

// The valve takes the word as signed, and a negative delay is no wait.
TEST_F(CycleSettings, minus_one_as_switch_delay_keeps_the_valve_at_full_duty) {
    OpenValve();
    RunWith("SampleSwitchDelay", "-1");
    EXPECT_EQ(TraceOf("pwm3/duty_cycle="), OpenedOnly);
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(CycleSettings, minus_one_as_switch_delay_does_not_stop_priming) {
    settings.keys["SampleSwitchDelay"] = "-1";
    Install();
    EXPECT_TRUE(control->PrimeSystem());
    EXPECT_EQ(TraceOf("pwm3/duty_cycle="), OpenedOnly);
}

TEST_F(CycleSettings, minus_one_as_led_channel_or_frequency_or_duty_is_refused) {
    std::size_t cycles = 0;
    for (const char* key : {"EmitterChannel", "EmitterDefaultFrequency", "EmitterDefaultDutyCycle"}) {
        control = std::make_unique<MeasurementControl>();
        const std::string before = settings.keys[key];
        settings.keys[key] = "-1";
        Install();
        Run(++cycles);
        End();
        settings.keys[key] = before;
        EXPECT_EQ(LogLines(), Texts(cycles, LEDValuesNotSet)) << key;
    }
}

TEST_F(CycleSettings, minus_one_as_reject_number_rejects_every_sample) {
    Sample("DarkCountMeasurement", "1");
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(4711)});
    settings.keys["DarkLowRejectNum"] = "0";
    RunWith("DarkHighRejectNum", "-1");
    ASSERT_EQ(Results().size(), 1U);
    EXPECT_EQ(Results()[0].GetDarkCount(), 0.0);
}
