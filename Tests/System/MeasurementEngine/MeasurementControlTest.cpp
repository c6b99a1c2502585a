#include <dlfcn.h>

#include <atomic>
#include <cerrno>

#include "System/Messages/MeasurementMessage.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/System/MeasurementEngine/CycleFixture.h"

namespace {

const std::string NotSent = "MeasurementControl::Run  Unable to create and send the measurement request";
const std::string NoInit = "MeasurementControl::Run  Unable to initialize thread";

const char* const DisplayNames[] = {"Verify Flag (Home Poisition)",
                                    "Dark Count Measurement",
                                    "Verify Flag (No Light)",
                                    "Sample Flush & Delivery Verify Flow",
                                    "Sample Flush & Delivery",
                                    "Sample Settling Time",
                                    "LED Adjustment",
                                    "Reference Optical Measurement",
                                    "Optional Mitigation",
                                    "Reference SRDV Measurement",
                                    "Pre Mix Stiring",
                                    "Reagent Staging",
                                    "Reagent Addition",
                                    "Verify Flag Sensor (Light)",
                                    "Mixing",
                                    "Color Development (Debubbling)",
                                    "Reacted Sample Optical Measurement",
                                    "Sample SRDV Measurement",
                                    "Sanity Check"};

std::string Executing(int step) { return std::string("Executing ") + DisplayNames[step] + " Step"; }

Texts ExecutingUpTo(int last) {
    Texts texts;
    for (int step = 0; step <= last; ++step) {
        texts.push_back(Executing(step));
    }
    return texts;
}

std::atomic<bool> mutexesFail{false};

class SampleConfigurationCycle : public Cycle {
protected:
    void SetUp() override { ASSERT_TRUE(InstallSettings(SOURCE_FOLDER "/configuration/analyzer.conf.xml")); }

    void RunToEnd() {
        Run();
        End();
    }
};

class FaultyCycle : public SampleConfigurationCycle, public testing::WithParamInterface<const char*> {};

}  // namespace

// Creating a mutex does not fail on this system, so the test makes it fail.
extern "C" int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
    using Function = int (*)(pthread_mutex_t*, const pthread_mutexattr_t*);
    if (mutexesFail) {
        return ENOMEM;
    }
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_mutex_init"));
    return real(mutex, attributes);
}

TEST_F(Cycle, a_mutex_that_cannot_be_made_is_reported) {
    control.reset();
    mutexesFail = true;
    control = std::make_unique<MeasurementControl>();
    mutexesFail = false;
    EXPECT_EQ(LogLines(), Texts{"MeasurementControl::MeasurementControl  Unable to create mutex"});
}

TEST_F(Cycle, runs_the_nineteen_steps_by_number_and_ends_with_a_result) {
    std::reverse(settings.steps.begin(), settings.steps.end());
    Install();
    Run();
    End();
    Texts expected = ExecutingUpTo(5);
    expected.push_back(Executing(6));
    expected.emplace_back("LED Adjustment Results: LED DutyCycle = 40.000000%% and LED Adjust Time = 0ms");
    for (int step = 7; step <= 18; ++step) {
        expected.push_back(Executing(step));
    }
    expected.push_back(Waiting);
    expected.emplace_back("End of Measurement Cycle: LED DutyCycle = 40.000000%% and LED Adjust Time = 0ms");
    EXPECT_EQ(StatusTexts(), expected);
    EXPECT_EQ(Results().size(), 1U);
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(Cycle, the_first_result_carries_index_1_and_the_next_2) {
    Install();
    Run();
    RunAgain(2);
    End();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[0].GetMeasurementIndex(), 1U);
    EXPECT_EQ(results[1].GetMeasurementIndex(), 2U);
}

TEST_F(Cycle, the_result_carries_the_counts_and_what_follows_from_them) {
    for (const char* name : {"DarkCountMeasurement", "ReferenceOpticalMeasurement", "SampleOpticalMeasurement"}) {
        settings.Step(name)["ADC Monitor On"] = "true";
        settings.Step(name)["Duration"] = "1";
    }
    Install();
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(100), Bench::SpiAnswer::Count(1100), Bench::SpiAnswer::Count(600)});
    Run();
    End();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].GetDarkCount(), 100.0);
    EXPECT_EQ(results[0].GetReferenceCount(), 1100.0);
    EXPECT_EQ(results[0].GetSampleCount(), 600.0);
    EXPECT_EQ(results[0].GetTransmittance(), 0.5);
    EXPECT_NEAR(results[0].GetAbsorbance(), 0.30103, 0.000005);
    EXPECT_NEAR(results[0].GetChlorine(), 2.4 * 0.30103, 0.00002);
}

TEST_F(Cycle, settings_changed_after_the_first_cycle_have_no_effect) {
    Install();
    Run();
    settings.keys["EmitterDefaultFrequency"] = "500.0";
    Install();
    RunAgain(2);
    End();
    EXPECT_EQ(TraceOf("pwm0/period="), Texts(2, "/sys/class/pwm/pwmchip0/pwm0/period=1000000"));
}

TEST_F(Cycle, a_missing_step_ends_the_cycle_without_a_result) {
    settings.steps.erase(settings.steps.begin() + 5);
    Install();
    Run();
    End();
    Texts expected = ExecutingUpTo(4);
    expected.push_back(Waiting);
    EXPECT_EQ(StatusTexts(), expected);
    EXPECT_EQ(LogLines(), Texts{NotSent});
    EXPECT_TRUE(Results().empty());
}

TEST_F(Cycle, an_abort_waits_for_the_step_and_runs_no_other) {
    settings.Step("VerifyFlow")["Stirring On"] = "true";
    settings.Step("VerifyFlow")["Duration"] = "20000";
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    WaitForStatus(Executing(3));
    EXPECT_TRUE(control->AbortMeasurement());
    Texts expected = ExecutingUpTo(3);
    expected.push_back(Aborted);
    EXPECT_EQ(StatusTexts(), expected);
    EXPECT_THAT(Between("/sys/class/pwm/pwmchip0/pwm2/enable=1", "/sys/class/pwm/pwmchip0/pwm2/enable=0"),
                IsWaitOf(20.0));
    EXPECT_TRUE(Results().empty());
    EXPECT_EQ(LogLines(), Texts{NotSent});

    RunAgain(2);
    End();
    ASSERT_EQ(Results().size(), 1U);
    EXPECT_EQ(Results()[0].GetMeasurementIndex(), 1U);
}

TEST_F(Cycle, an_abort_in_the_last_step_counts_as_failed) {
    settings.Step("SanityCheck")["Stirring On"] = "true";
    settings.Step("SanityCheck")["Duration"] = "20000";
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    WaitForStatus(Executing(18));
    EXPECT_TRUE(control->AbortMeasurement());
    EXPECT_EQ(StatusTexts().back(), Aborted);
    EXPECT_TRUE(Results().empty());
    EXPECT_EQ(LogLines(), Texts{NotSent});
}

TEST_F(Cycle, an_abort_right_after_the_start_finds_the_cycle) {
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    EXPECT_TRUE(control->AbortMeasurement());
    EXPECT_FALSE(control->AbortMeasurement());
}

TEST_F(Cycle, there_is_nothing_to_abort_without_a_cycle) {
    Install();
    EXPECT_FALSE(control->AbortMeasurement());
    Run();
    while (!control->StartMeasurement()) {
        sched_yield();
    }
    WaitForCycles(2);
}

TEST_F(Cycle, a_second_start_is_refused_while_a_cycle_runs) {
    settings.Step("VerifyFlow")["Stirring On"] = "true";
    settings.Step("VerifyFlow")["Duration"] = "20000";
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    EXPECT_FALSE(control->StartMeasurement());
    WaitForStatus(Executing(3));
    EXPECT_FALSE(control->StartMeasurement());
    WaitForCycles(1);
    End();
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(Cycle, its_end_aborts_and_joins_a_running_cycle) {
    settings.Step("VerifyFlow")["Stirring On"] = "true";
    settings.Step("VerifyFlow")["Duration"] = "20000";
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    WaitForStatus(Executing(3));
    End();
    EXPECT_EQ(StatusTexts().back(), Aborted);
}

TEST_F(Cycle, the_led_runs_at_whole_hertz) {
    settings.keys["EmitterDefaultFrequency"] = "999.9";
    Install();
    Run();
    End();
    EXPECT_EQ(TraceOf("pwm0/period="), Texts{"/sys/class/pwm/pwmchip0/pwm0/period=1001001"});
}

TEST_F(Cycle, the_duty_of_a_finished_cycle_starts_the_next) {
    settings.Step("ReferenceOpticalMeasurement")["ADC Monitor On"] = "true";
    settings.Step("ReferenceOpticalMeasurement")["Duration"] = "1";
    Install();
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(1600000)});
    Run();
    RunAgain(2);
    End();
    EXPECT_EQ(StatusTexts()[21], "End of Measurement Cycle: LED DutyCycle = 50.000000%% and LED Adjust Time = 0ms");
    EXPECT_EQ(TraceOf("pwm0/duty_cycle="),
              (Texts{"/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=400000",
                     "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=500000"}));
}

TEST_F(Cycle, an_aborted_cycle_leaves_the_duty_as_it_was) {
    settings.Step("ReferenceOpticalMeasurement")["ADC Monitor On"] = "true";
    settings.Step("ReferenceOpticalMeasurement")["Duration"] = "1";
    settings.Step("Mixing")["Stirring On"] = "true";
    settings.Step("Mixing")["Duration"] = "20000";
    Install();
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(1600000)});
    ASSERT_TRUE(control->StartMeasurement());
    WaitForStatus(Executing(14));
    EXPECT_TRUE(control->AbortMeasurement());
    ASSERT_TRUE(control->StartMeasurement());
    EXPECT_TRUE(control->AbortMeasurement());
    EXPECT_EQ(TraceOf("pwm0/duty_cycle=").back(), "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=400000");
}

TEST_F(Cycle, all_hardware_is_given_back_at_the_end) {
    Install();
    Run();
    End();
    for (int channel = 0; channel < Bench::PwmChannels; ++channel) {
        EXPECT_FALSE(Board().Pwm(channel).exported) << channel;
    }
}

TEST_F(Cycle, hardware_that_fails_to_come_up_does_not_stop_the_cycle) {
    settings.keys["EmitterDefaultDutyCycle"] = "-1.0";
    Install();
    Run();
    End();
    EXPECT_EQ(Results().size(), 1U);
    EXPECT_EQ(LogLines(), Texts{"MeasurementStepController::InitializeEmitterSystem  initial values not set"});
}

TEST_F(Cycle, without_settings_the_thread_ends_and_the_next_start_tries_again) {
    ASSERT_TRUE(control->StartMeasurement());
    WaitForLog(NoInit);
    EXPECT_EQ(StatusTexts(), Texts{});
    Install();
    RunAgain(1);
    End();
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(Cycle, a_result_without_memory_fails_the_cycle_and_leaves_the_index) {
    Install();
    FailingAllocation::FailSize(sizeof(MeasurementMessage));
    Run();
    WaitForLog(NotSent);
    RunAgain(2);
    End();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].GetMeasurementIndex(), 1U);
}

TEST_F(Cycle, priming_takes_the_configured_revolutions_and_homes_the_pump) {
    settings.keys["PrimeCycleCount"] = "4";
    Install();
    EXPECT_TRUE(control->PrimeSystem());
    EXPECT_THAT(Between("/sys/class/pwm/pwmchip0/pwm1/enable=1", "/sys/class/pwm/pwmchip0/pwm1/enable=0"),
                IsWaitOf(4.0));
    EXPECT_EQ(TraceOf("gpio/export=50").size(), 1U);
    EXPECT_TRUE(control->PrimeSystem());  // the count stays
    EXPECT_EQ(TraceOf("gpio/export=50").size(), 2U);
}

TEST_F(Cycle, priming_after_a_cycle_has_no_count_of_revolutions_and_fails) {
    Install();
    Run();
    while (control->StartMeasurement()) {
        control->AbortMeasurement();  // joined, so that nothing runs
        break;
    }
    Board().ClearTrace();
    EXPECT_FALSE(control->PrimeSystem());
    EXPECT_EQ(TraceOf("pwm1/period="), Texts{});
    EXPECT_EQ(TraceOf("gpio/export=50"), Texts{});
}

TEST_F(Cycle, priming_first_serves_the_cycles_after_it) {
    Install();
    EXPECT_TRUE(control->PrimeSystem());
    Run();
    End();
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(Cycle, priming_is_refused_while_a_cycle_runs) {
    settings.Step("VerifyFlow")["Stirring On"] = "true";
    settings.Step("VerifyFlow")["Duration"] = "20000";
    Install();
    ASSERT_TRUE(control->StartMeasurement());
    EXPECT_FALSE(control->PrimeSystem());
    EXPECT_EQ(LogLines(),
              Texts{"MeasurementControl::PrimeSystem  Unable to execute priming due to measurement already running"});
}

TEST_F(Cycle, a_priming_that_fails_reads_the_settings_again) {
    settings.keys["PrimeCycleCount"] = "0";
    Install();
    EXPECT_FALSE(control->PrimeSystem());
    settings.keys["PrimeCycleCount"] = "1";
    Install();
    EXPECT_TRUE(control->PrimeSystem());
}

TEST_F(Cycle, priming_without_settings_fails) { EXPECT_FALSE(control->PrimeSystem()); }

TEST_F(SampleConfigurationCycle, gives_the_chlorine_that_is_in_the_water) {
    RunToEnd();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_NEAR(results[0].GetChlorine(), Board().Settings().chlorine, 0.02 * Board().Settings().chlorine);
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(SampleConfigurationCycle, gives_no_chlorine_if_no_reagent_comes) {
    SetFault("reagent-empty");
    EXPECT_TRUE(control->PrimeSystem());  // draws the line empty
    RunToEnd();
    const std::vector<MeasurementResults> results = Results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_NEAR(results[0].GetChlorine(), 0.0, 0.02);
}

// Whatever is missing, no step of a cycle has a verdict: it ends, and a result goes out.
TEST_P(FaultyCycle, ends_with_a_result) {
    SetFault(GetParam());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    RunToEnd();
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(Results().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(OfTheBoard, FaultyCycle,
                         testing::Values("gpio-missing", "pwm-missing", "spi-missing", "spi-echo", "motor-stalled",
                                         "led-dead", "write-refused=pwm1/duty_cycle"));
