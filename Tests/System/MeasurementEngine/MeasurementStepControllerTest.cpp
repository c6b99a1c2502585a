#include "System/MeasurementEngine/MeasurementStepController.h"

#include <cmath>
#include <functional>

#include "Drivers/SpiDevice.h"
#include "System/MeasurementEngine/MeasurementLEDController.h"
#include "System/MeasurementEngine/SampleStatistics.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"

namespace {

const std::string Pwm = "/sys/class/pwm/pwmchip0/";
const std::string Gpio = "/sys/class/gpio/";
const std::string ClassName = "MeasurementStepController::";

class StepController : public MeasurementFixture {
protected:
    StepController() {
        controller.SetEmitterChannel(0);
        controller.SetEmitterFrequency(1000.0);
        controller.SetEmitterDutyCycle(40.0);
        controller.SetCellConstant(1714.818182);
        controller.SetSampleSwitchDelay(0);
        controller.SetSampleSwitchDutyCycle(40.0);
        controller.SetFindHomeSpeed(30.0);
        controller.SetDetectorOutputLevel(2000000.0);
        controller.SetDetectorOutputLevelDeviation(25.0);
        controller.SetLEDDutyCycleAdjustStep(2.0);
    }

    static StepParameters Step(StepType type, std::uint32_t duration = 0) {
        StepParameters step;
        step.stepType = type;
        step.duration = duration;
        return step;
    }

    // One reading of the detector, with that count.
    void Measure(StepType type, std::int32_t count) {
        Board().ScriptSpiRead({Bench::SpiAnswer::Count(count)});
        StepParameters step = Step(type, 1);
        step.adcMonitorOn = true;
        EXPECT_TRUE(controller.ExecuteStep(&step));
    }

    // The counts of the last step's data, sorted.
    std::vector<double> LastCounts() {
        Settle();
        std::vector<double> counts;
        const std::vector<StepResults> data = listener.StepData();
        for (const DetectorInformation& sample : data.back().GetSamples()) {
            counts.push_back(sample.GetCount());
        }
        std::sort(counts.begin(), counts.end());
        return counts;
    }

    // Several readings, among them a low and a high one.
    void MeasureSeveral(StepType type, std::uint32_t duration = 3000) {
        Board().ScriptSpiRead({Bench::SpiAnswer::Count(5000), Bench::SpiAnswer::Count(90000),
                               Bench::SpiAnswer::Count(10), Bench::SpiAnswer::Count(5200)});
        StepParameters step = Step(type, duration);
        step.adcMonitorOn = true;
        EXPECT_TRUE(controller.ExecuteStep(&step));
    }

    void ExpectNothingClaimed() {
        for (int channel = 0; channel < Bench::PwmChannels; ++channel) {
            EXPECT_FALSE(Board().Pwm(channel).exported) << channel;
        }
        for (const int pin : {2, 3, 4, 5, 6}) {
            EXPECT_FALSE(Board().Pin(0, pin).claimed) << pin;
        }
        EXPECT_FALSE(Board().Pin(1, 15).claimed);
        EXPECT_FALSE(Board().Pin(1, 18).claimed);
    }

    MeasurementStepController controller;
};

struct Failure {
    int allocation;
    const char* text;
};

class StepControllerOutOfMemory : public StepController, public testing::WithParamInterface<Failure> {};

constexpr Failure Failures[] = {
    {1, "InitializeDetectorSystem  Unable to create detector System"},
    {2, "InitializeDetectorSystem  Unable to create detector Threading System"},
    {3, "InitializeEmitterSystem  Unable to create LED emitter System"},
    {4, "InitializeEmitterSystem  Unable to create LED emitter Threading System"},
    {5, "InitializeReAgentDeliverySystem  Unable to create fluid delivery motor"},
    {6, "InitializeReAgentDeliverySystem  Unable to create fluid delivery Threading System"},
    {7, "InitializeSampleDeliverySystem  Unable to create sample delivery motor"},
    {8, "InitializeSampleDeliverySystem  Unable to create sample delivery Threading System"},
    {9, "InitializeStirBarSystem  Unable to create stirbar motor"},
    {10, "InitializeStirBarSystem  Unable to create stirbar Threading System"},
};

}  // namespace

TEST_F(StepController, claims_the_lines_and_channels_of_the_instrument_in_order) {
    EXPECT_TRUE(controller.InitializeSystems());
    EXPECT_EQ(TraceOf("/export="),
              (Texts{Pwm + "export=0", Gpio + "export=3", Gpio + "export=2", Pwm + "export=1", Gpio + "export=4",
                     Gpio + "export=5", Gpio + "export=6", Pwm + "export=3", Gpio + "export=47", Pwm + "export=2"}));
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(StepController, a_new_cycle_starts_with_the_led_on_and_the_rest_off) {
    ASSERT_TRUE(controller.InitializeSystems());
    EXPECT_TRUE(Board().Pwm(0).enabled);
    EXPECT_EQ(Board().Pwm(0).period, 1000000U);
    EXPECT_EQ(Board().Pwm(0).duty, 400000U);
    for (const int channel : {1, 2, 3}) {
        EXPECT_FALSE(Board().Pwm(channel).enabled) << channel;
    }
    EXPECT_TRUE(Board().Pin(0, 2).level);   // pump chip disabled
    EXPECT_FALSE(Board().Pin(0, 3).level);  // forward
    EXPECT_TRUE(Board().Pin(0, 4).level && Board().Pin(0, 5).level && Board().Pin(0, 6).level);
    EXPECT_TRUE(Board().Pin(1, 15).level);  // stir chip disabled
}

TEST_F(StepController, release_gives_everything_back) {
    ASSERT_TRUE(controller.InitializeSystems());
    controller.ReleaseSystems();
    ExpectNothingClaimed();
}

TEST_F(StepController, its_end_gives_everything_back) {
    {
        MeasurementStepController another;
        another.SetEmitterChannel(0);
        another.SetEmitterFrequency(1000.0);
        another.SetEmitterDutyCycle(40.0);
        ASSERT_TRUE(another.InitializeSystems());
    }
    ExpectNothingClaimed();
}

TEST_F(StepController, the_systems_can_be_made_again) {
    ASSERT_TRUE(controller.InitializeSystems());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(controller.InitializeSystems());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_P(StepControllerOutOfMemory, logs_what_it_could_not_make_and_stops_there) {
    const FailingAllocation failing(GetParam().allocation);
    EXPECT_FALSE(controller.InitializeSystems());
    EXPECT_EQ(LogLines(), Texts{ClassName + GetParam().text});
    StepParameters step = Step(LIGHT_STEP);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    controller.ReleaseSystems();
    ExpectNothingClaimed();
}

INSTANTIATE_TEST_SUITE_P(EachSystem, StepControllerOutOfMemory, testing::ValuesIn(Failures));

TEST_F(StepController, without_the_emitters_values_the_emitter_is_refused) {
    const std::string text = ClassName + "InitializeEmitterSystem  initial values not set";
    controller.SetEmitterChannel(-1);
    EXPECT_FALSE(controller.InitializeSystems());
    controller.SetEmitterChannel(0);
    controller.SetEmitterDutyCycle(-0.1);
    EXPECT_FALSE(controller.InitializeSystems());
    controller.SetEmitterDutyCycle(0.0);
    controller.SetEmitterFrequency(-1.0);
    EXPECT_FALSE(controller.InitializeSystems());
    controller.SetEmitterFrequency(0.0);
    EXPECT_EQ(LogLines(), (Texts{text, text, text}));
}

TEST_F(StepController, the_emitters_values_are_missing_until_each_is_set) {
    const auto setChannel = [](MeasurementStepController& made) { made.SetEmitterChannel(0); };
    const auto setFrequency = [](MeasurementStepController& made) { made.SetEmitterFrequency(1000.0); };
    const auto setDutyCycle = [](MeasurementStepController& made) { made.SetEmitterDutyCycle(40.0); };
    using Setter = std::function<void(MeasurementStepController&)>;
    for (const auto& [first, second] : {std::pair<Setter, Setter>{setChannel, setFrequency},
                                        {setChannel, setDutyCycle},
                                        {setFrequency, setDutyCycle}}) {
        MeasurementStepController another;
        first(another);
        second(another);
        EXPECT_FALSE(another.InitializeSystems());
    }
    const std::string text = ClassName + "InitializeEmitterSystem  initial values not set";
    EXPECT_EQ(LogLines(), (Texts{text, text, text}));
}

TEST_F(StepController, an_emitter_channel_beyond_all_digits_is_refused_by_the_channel) {
    controller.SetEmitterChannel(259);  // its low eight bits are the valve's channel
    testing::internal::CaptureStderr();
    EXPECT_TRUE(controller.InitializeSystems());
    EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, 17), "wrong pwm channel");
}

TEST_F(StepController, a_null_step_is_refused_without_a_text) {
    EXPECT_FALSE(controller.ExecuteStep(nullptr));
    EXPECT_EQ(StatusTexts(), Texts{});
}

TEST_F(StepController, reports_each_step_by_its_display_name) {
    ASSERT_TRUE(controller.InitializeSystems());
    StepParameters step = Step(SAMPLE_OPTICAL_MEASUREMENT_STEP);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(StatusTexts(), Texts{"Executing Reacted Sample Optical Measurement Step"});
}

TEST_F(StepController, a_step_that_asks_for_nothing_passes_at_once) {
    ASSERT_TRUE(controller.InitializeSystems());
    StepParameters step = Step(SETTLING_TIME_STEP, 60000);
    const double began = Board().Seconds();
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(0.0));
}

TEST_F(StepController, a_step_is_as_long_as_its_longest_worker) {
    ASSERT_TRUE(controller.InitializeSystems());
    StepParameters step = Step(MIXING_STEP, 5000);
    step.stirringOn = true;
    step.motorAngle = 90.0F;
    step.motorSpeed = 90;
    const double began = Board().Seconds();
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(5.0));
    EXPECT_THAT(Between(Pwm + "pwm1/enable=1", Pwm + "pwm1/enable=0"), IsWaitOf(1.0));
    EXPECT_LT(TimeOf(Pwm + "pwm1/enable=1"), TimeOf(Pwm + "pwm2/enable=0"));  // both at the same time
}

TEST_F(StepController, led_and_valve_stay_as_the_step_leaves_them) {
    ASSERT_TRUE(controller.InitializeSystems());
    StepParameters step = Step(VERIFY_FLOW_STEP);
    step.sampleValveOn = true;
    step.ledOn = false;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_TRUE(Board().Pwm(3).enabled);
    EXPECT_FALSE(Board().Pwm(0).enabled);
    step.sampleValveOn = false;
    step.ledOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_FALSE(Board().Pwm(3).enabled);
    EXPECT_TRUE(Board().Pwm(0).enabled);
}

TEST_F(StepController, the_valve_drops_to_its_hold_duty_after_the_switch_delay) {
    controller.SetSampleSwitchDelay(200);
    ASSERT_TRUE(controller.InitializeSystems());
    Board().ClearTrace();
    StepParameters step = Step(VERIFY_FLOW_STEP);
    step.sampleValveOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(TraceOf("pwm3/duty_cycle="), (Texts{Pwm + "pwm3/duty_cycle=0", Pwm + "pwm3/duty_cycle=1000000",
                                                  Pwm + "pwm3/duty_cycle=0", Pwm + "pwm3/duty_cycle=400000"}));
}

TEST_F(StepController, without_one_of_the_workers_nothing_runs_and_nothing_is_reported) {
    const FailingAllocation failing(10);
    ASSERT_FALSE(controller.InitializeSystems());
    Board().ClearTrace();
    StepParameters step = Step(VERIFY_FLOW_STEP, 1000);
    step.sampleValveOn = true;
    step.adcMonitorOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(LogLines().size(), 1U);  // that of the failed set-up
}

TEST_F(StepController, without_a_detector_a_count_is_zero_and_the_step_data_is_empty) {
    ASSERT_TRUE(controller.InitializeSystems());
    Measure(DARK_COUNT_MEASUREMENT_STEP, 100);
    controller.ReleaseSystems();
    StepParameters step = Step(DARK_COUNT_MEASUREMENT_STEP, 1);
    step.adcMonitorOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(controller.GetDarkCount(), 0.0);
    EXPECT_TRUE(LastCounts().empty());
}

TEST_F(StepController, the_three_counts_make_absorbance_and_chlorine) {
    ASSERT_TRUE(controller.InitializeSystems());
    Measure(DARK_COUNT_MEASUREMENT_STEP, 100);
    Measure(REFERENCE_OPTICAL_MEASUREMENT_STEP, 1100);
    Measure(SAMPLE_OPTICAL_MEASUREMENT_STEP, 600);
    EXPECT_EQ(controller.GetDarkCount(), 100.0);
    EXPECT_EQ(controller.GetReferenceCount(), 1100.0);
    EXPECT_EQ(controller.GetSampleCount(), 600.0);
    EXPECT_EQ(controller.GetTransmittance(), 0.5);
    EXPECT_NEAR(controller.GetAbsorbance(), 0.30103, 0.000005);
    EXPECT_NEAR(controller.GetChlorine(), 516.2, 0.05);
}

TEST_F(StepController, dark_and_sample_are_trimmed_with_their_own_reject_counts) {
    controller.SetDarkHighReject(1);
    controller.SetDarkLowReject(2);
    controller.SetSampleHighReject(2);
    controller.SetSampleLowReject(1);
    ASSERT_TRUE(controller.InitializeSystems());
    MeasureSeveral(DARK_COUNT_MEASUREMENT_STEP);
    const std::vector<double> dark = LastCounts();
    EXPECT_EQ(controller.GetDarkCount(), TrimmedMean(dark, 1, 2));
    EXPECT_EQ(controller.GetDarkDeviation(), TrimmedDeviation(dark, 1, 2));
    MeasureSeveral(SAMPLE_OPTICAL_MEASUREMENT_STEP);
    const std::vector<double> sample = LastCounts();
    EXPECT_EQ(controller.GetSampleCount(), TrimmedMean(sample, 2, 1));
    EXPECT_EQ(controller.GetSampleDeviation(), TrimmedDeviation(sample, 2, 1));
}

TEST_F(StepController, the_reference_is_trimmed_and_its_deviation_is_not) {
    controller.SetReferenceHighReject(1);
    controller.SetReferenceLowReject(1);
    ASSERT_TRUE(controller.InitializeSystems());
    MeasureSeveral(REFERENCE_OPTICAL_MEASUREMENT_STEP);
    const std::vector<double> counts = LastCounts();
    EXPECT_EQ(controller.GetReferenceCount(), TrimmedMean(counts, 1, 1));
    EXPECT_NEAR(controller.GetReferenceDeviation(), RawDeviation(counts), 1e-6);
    EXPECT_GT(controller.GetReferenceDeviation(), TrimmedDeviation(counts, 1, 1));
}

TEST_F(StepController, the_reference_changes_the_duty_for_the_next_cycle_and_not_the_led) {
    ASSERT_TRUE(controller.InitializeSystems());
    Measure(DARK_COUNT_MEASUREMENT_STEP, 1000);
    StepParameters on = Step(NO_LIGHT_STEP);
    on.ledOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&on));
    Board().ClearTrace();
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(1601000)});
    StepParameters step = Step(REFERENCE_OPTICAL_MEASUREMENT_STEP, 1);
    step.adcMonitorOn = true;
    step.ledOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(controller.GetLEDDutyCycle(),
              MeasurementLEDController::EstimateDutyCycle(1601000.0, 40.0, 1000.0, 2000000.0));
    EXPECT_NEAR(controller.GetLEDDutyCycle(), 49.975, 1e-9);
    EXPECT_EQ(TraceOf("pwm0"), Texts{});
    EXPECT_TRUE(controller.InitializeSystems());
    EXPECT_EQ(Board().Pwm(0).duty, 499750U);
}

TEST_F(StepController, without_the_adc_flag_the_last_count_stays) {
    ASSERT_TRUE(controller.InitializeSystems());
    StepParameters step = Step(DARK_COUNT_MEASUREMENT_STEP, 1);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(controller.GetDarkCount(), 0.0);
    Measure(DARK_COUNT_MEASUREMENT_STEP, 123);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(controller.GetDarkCount(), 123.0);
}

TEST_F(StepController, a_measurement_of_no_duration_gives_a_count_of_zero) {
    ASSERT_TRUE(controller.InitializeSystems());
    for (const StepType type :
         {DARK_COUNT_MEASUREMENT_STEP, REFERENCE_OPTICAL_MEASUREMENT_STEP, SAMPLE_OPTICAL_MEASUREMENT_STEP}) {
        Measure(type, 123);
        StepParameters step = Step(type, 0);
        step.adcMonitorOn = true;
        EXPECT_TRUE(controller.ExecuteStep(&step));
    }
    EXPECT_EQ(controller.GetDarkCount(), 0.0);
    EXPECT_EQ(controller.GetReferenceCount(), 0.0);
    EXPECT_EQ(controller.GetSampleCount(), 0.0);
}

TEST_F(StepController, every_sampled_step_sends_its_samples_with_the_step) {
    ASSERT_TRUE(controller.InitializeSystems());
    Measure(SANITY_CHECK_STEP, 4711);
    StepParameters unsampled = Step(LIGHT_STEP);
    EXPECT_TRUE(controller.ExecuteStep(&unsampled));
    Settle();
    const std::vector<StepResults> data = listener.StepData();
    ASSERT_EQ(data.size(), 1U);
    EXPECT_EQ(data[0].GetStep().stepType, SANITY_CHECK_STEP);
    EXPECT_EQ(data[0].GetStep().duration, 1U);
    ASSERT_EQ(data[0].GetSamples().size(), 1U);
    EXPECT_EQ(data[0].GetSamples()[0].GetCount(), 4711.0);
}

TEST_F(StepController, an_adjustment_reports_its_duty_and_time) {
    controller.SetLEDSettleTime(100);
    ASSERT_TRUE(controller.InitializeSystems());
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(1000000), Bench::SpiAnswer::Count(2000000)});
    StepParameters step = Step(LED_ADJUSTMENT_STEP, 20);
    step.adcMonitorOn = true;
    step.ledOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(StatusTexts(),
              (Texts{"Executing LED Adjustment Step",
                     "LED Adjustment Results: LED DutyCycle = 42.000000%% and LED Adjust Time = 240ms"}));
    EXPECT_EQ(controller.GetLEDDutyCycle(), 42.0);
    EXPECT_EQ(controller.GetLEDAdjustTime(), 240U);
    EXPECT_EQ(Board().Pwm(0).duty, 420000U);
    EXPECT_EQ(LastCounts(), std::vector<double>{2000000.0});  // of the last trial
}

TEST_F(StepController, an_adjustment_without_the_adc_flag_reports_the_unchanged_duty) {
    ASSERT_TRUE(controller.InitializeSystems());
    Board().ClearTrace();
    StepParameters step = Step(LED_ADJUSTMENT_STEP, 20);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(StatusTexts(), (Texts{"Executing LED Adjustment Step",
                                    "LED Adjustment Results: LED DutyCycle = 40.000000%% and LED Adjust Time = 0ms"}));
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(StepController, an_adjustment_without_its_workers_refuses_to_start) {
    StepParameters step = Step(LED_ADJUSTMENT_STEP, 20);
    step.adcMonitorOn = true;
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(StatusTexts(), (Texts{"Executing LED Adjustment Step",
                                    "LED Adjustment Results: LED DutyCycle = 40.000000%% and LED Adjust Time = 0ms"}));
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(StepController, an_adjustment_that_cannot_be_made_counts_as_done) {
    ASSERT_TRUE(controller.InitializeSystems());
    const FailingAllocation failing(1);
    StepParameters step = Step(LED_ADJUSTMENT_STEP, 20);
    EXPECT_TRUE(controller.ExecuteStep(&step));
    EXPECT_EQ(StatusTexts(), Texts{"Executing LED Adjustment Step"});
}

TEST_F(StepController, priming_turns_the_pump_at_one_revolution_a_second_with_the_valve_open) {
    controller.SetPrimeCount(3);
    EXPECT_TRUE(controller.PrimeFluidics());
    EXPECT_EQ(TraceOf("pwm1/period="), Texts{Pwm + "pwm1/period=625000"});
    EXPECT_THAT(Between(Pwm + "pwm1/enable=1", Pwm + "pwm1/enable=0"), IsWaitOf(3.0));
    EXPECT_LT(TimeOf(Pwm + "pwm3/enable=1"), TimeOf(Pwm + "pwm1/enable=1"));
    EXPECT_EQ(TraceOf("pwm3/duty_cycle="), (Texts{Pwm + "pwm3/duty_cycle=0", Pwm + "pwm3/duty_cycle=1000000"}));
    EXPECT_FALSE(Board().Pwm(3).enabled);
    ExpectNothingClaimed();
}

TEST_F(StepController, priming_of_no_revolution_fails_in_the_motor) {
    testing::internal::CaptureStdout();
    EXPECT_FALSE(controller.PrimeFluidics());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "StepperDriverMotor::MoveAngle failed!");
    EXPECT_EQ(TraceOf("pwm3/enable=").back(), Pwm + "pwm3/enable=0");
    ExpectNothingClaimed();
}

TEST_F(StepController, priming_without_its_hardware_fails_and_gives_back_what_it_has) {
    controller.SetPrimeCount(1);
    const FailingAllocation failing(3);
    EXPECT_FALSE(controller.PrimeFluidics());
    EXPECT_EQ(LogLines(), Texts{ClassName + "InitializeSampleDeliverySystem  Unable to create sample delivery motor"});
    EXPECT_EQ(TraceOf("pwm1/period="), Texts{});
    ExpectNothingClaimed();
}

TEST_F(StepController, finds_the_pump_home_with_hardware_of_its_own) {
    controller.SetFindHomeSpeed(6.0);
    EXPECT_TRUE(controller.FindReAgentHome());
    EXPECT_EQ(TraceOf("pwm1/period=")[0], Pwm + "pwm1/period=38461540");  // 26 steps a second, as a 32-bit float
    ExpectNothingClaimed();
}

TEST_F(StepController, finds_the_pump_home_with_the_hardware_that_is_there) {
    ASSERT_TRUE(controller.InitializeSystems());
    EXPECT_TRUE(controller.FindReAgentHome());
    EXPECT_TRUE(Board().Pwm(1).exported);
    EXPECT_TRUE(Board().Pin(0, 2).claimed);
}

TEST_F(StepController, finding_home_without_memory_for_motor_or_worker_fails) {
    for (const int allocation : {1, 2}) {
        const FailingAllocation failing(allocation);
        EXPECT_FALSE(controller.FindReAgentHome());
        ExpectNothingClaimed();
    }
}
