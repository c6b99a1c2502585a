#include "System/DeviceMonitor/HardwareTests.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "Drivers/GpioPin.h"
#include "System/DeviceMonitor/AudioRoutines.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/System/DeviceMonitor/DeviceMonitorFixture.h"

namespace {

constexpr const char* Silence = "audio 0 [] from DeviceMonitor";
constexpr const char* Play = "audio 1 [alert.wav] from DeviceMonitor";
constexpr const char* Restart = "audio 2 [] from DeviceMonitor";
constexpr const char* Amber = "colors 2 0 select 1 from SystemControl";
constexpr const char* Passed = "test 0 verdict 1 as 1 from DeviceMonitor";
constexpr const char* Failed = "test 0 verdict 0 as 1 from DeviceMonitor";

constexpr const char* MotorFailed = "log 3 Reagent delivery stepper motor test failed from DeviceMonitor";
constexpr const char* AmplifierFailed = "log 3 Audio amp test failed from DeviceMonitor";
constexpr const char* VoltageFailed = "log 3 Demultiplexer::ReadVoltage failed! from DeviceMonitor";

constexpr int FullScale = 1024;

class HardwareTest : public DeviceMonitorFixture {
protected:
    HardwareTest() { Start(); }

    double SecondsOf(bool (*action)(), bool result = true) const {
        const double start = Board().Seconds();
        EXPECT_EQ(action(), result);
        return Board().Seconds() - start;
    }

    // The lines about these, from there on.
    Texts TraceOf(const Texts& parts) const {
        Texts lines;
        for (const std::string& line : Board().Trace()) {
            for (const std::string& part : parts) {
                const std::size_t start = line.find(part);
                if (start != std::string::npos) {
                    lines.push_back(line.substr(start));
                }
            }
        }
        return lines;
    }
};

struct RailRow {
    int channel;
    double middle;     // volts
    const char* low;   // volts
    const char* high;  // volts
    const char* failure;
};

constexpr RailRow Rails[] = {
    {9, 3.3, "2.9", "3.4", "log 3 3.3V is outside of limits! from DeviceMonitor"},
    {10, 1.8, "1.6", "2.0", "log 3 1.8V is outside of limits! from DeviceMonitor"},
    {12, 1.0, "0.8", "1.2", "log 3 1.0V is outside of limits! from DeviceMonitor"},
    {11, 1.0, "0.8", "1.2", "log 3 Core 1.0V is outside of limits! from DeviceMonitor"},
};

}  // namespace

TEST_F(HardwareTest, a_good_board_passes_the_voltages) { EXPECT_EQ(Test(1), Texts{Passed}); }

TEST_F(HardwareTest, a_rail_on_a_limit_passes_and_one_step_beyond_it_fails) {
    for (const RailRow& rail : Rails) {
        // The scale is the limit, so that full scale is exactly as much.
        for (const char* limit : {rail.low, rail.high}) {
            const bool isLow = limit == rail.low;
            Board().SetIioScale(limit);
            for (const RailRow& other : Rails) {
                Board().SetMultiplexerRaw(other.channel, static_cast<int>(other.middle * FullScale / std::stod(limit)));
            }
            Board().SetMultiplexerRaw(rail.channel, FullScale);
            EXPECT_EQ(Test(1), Texts{Passed}) << rail.failure << " " << limit;
            Board().SetMultiplexerRaw(rail.channel, isLow ? FullScale - 1 : FullScale + 1);
            EXPECT_EQ(Test(1), (Texts{rail.failure, Amber, Failed})) << limit;
            Board().SetMultiplexerRaw(rail.channel, isLow ? FullScale + 1 : FullScale - 1);
            EXPECT_EQ(Test(1), Texts{Passed}) << rail.failure << " " << limit;
        }
    }
}

TEST_F(HardwareTest, several_rails_log_a_line_each_and_request_amber_once) {
    for (const RailRow& rail : Rails) {
        Board().SetMultiplexerVolts(rail.channel, 0.0);
    }
    EXPECT_EQ(Test(1), (Texts{Rails[0].failure, Rails[1].failure, Rails[2].failure, Rails[3].failure, Amber, Failed}));
    Board().ReleaseMultiplexer(9);
    Board().ReleaseMultiplexer(12);
    EXPECT_EQ(Test(1), (Texts{Rails[1].failure, Rails[3].failure, Amber, Failed}));
}

TEST_F(HardwareTest, the_voltages_are_read_afresh_each_time) {
    Board().SetMultiplexerVolts(9, 0.0);
    EXPECT_EQ(Test(1), (Texts{Rails[0].failure, Amber, Failed}));
    Board().ReleaseMultiplexer(9);
    EXPECT_EQ(Test(1), Texts{Passed});
}

TEST_F(HardwareTest, without_the_multiplexers_lines_the_voltages_fail_without_amber) {
    SetFault("gpio-missing");
    EXPECT_EQ(Test(1), (Texts{"log 3 Demultiplexer::Init - Configuring demultiplexer driver GPIO failed! from "
                              "RemoteIndicatorControl",
                              "log 3 DeviceMonitor::CheckBoardVoltages - Initializing demux failed! from DeviceMonitor",
                              Failed}));
}

TEST_F(HardwareTest, without_the_converter_the_voltages_fail_without_amber) {
    SetFault("iio-missing");
    EXPECT_EQ(Test(1),
              (Texts{VoltageFailed,
                     "log 3 DeviceMonitor::CheckBoardVoltages - Reading voltages failed! from DeviceMonitor", Failed}));
}

TEST_F(HardwareTest, a_good_amplifier_passes) { EXPECT_EQ(Test(2), (Texts{Silence, Play, Restart, Passed})); }

TEST_F(HardwareTest, a_dead_amplifier_fails) {
    SetFault("amplifier-dead");
    EXPECT_EQ(Test(2), (Texts{Silence, Play, AmplifierFailed, Amber, Restart, Failed}));
}

TEST_F(HardwareTest, a_rise_of_exactly_a_microvolt_passes) {
    Board().SetIioScale("2e-6");
    SetSettings([](auto& settings) {
        settings.supplyIdle = 0.0;
        settings.supplyAudio = 1e-6;
    });
    EXPECT_EQ(Test(2), (Texts{Silence, Play, Restart, Passed}));
}

TEST_F(HardwareTest, a_rise_of_less_than_a_microvolt_fails) {
    Board().SetIioScale("2e-6");
    SetSettings([](auto& settings) {
        settings.supplyIdle = 0.0;
        settings.supplyAudio = 1e-6 * 511 / 512;
    });
    EXPECT_EQ(Test(2), (Texts{Silence, Play, AmplifierFailed, Amber, Restart, Failed}));
}

TEST_F(HardwareTest, an_amplifier_that_cannot_be_measured_fails) {
    SetFault("iio-missing");
    EXPECT_EQ(Test(2), (Texts{Silence, VoltageFailed, Restart, Failed}));
}

TEST_F(HardwareTest, each_request_for_sound_is_followed_by_its_wait) {
    EXPECT_THAT(SecondsOf(TurnOffAudio), IsWaitOf(3.0));
    EXPECT_THAT(SecondsOf([] { return PlayAudio("alert.wav"); }), IsWaitOf(1.0));
    EXPECT_THAT(SecondsOf(RestartAudio), IsWaitOf(3.0));
}

TEST_F(HardwareTest, the_amplifier_test_gives_the_sound_one_second_more) {
    SetFault("amplifier-dead");
    EXPECT_THAT(SecondsOf([] { return HardwareTests().TestAudioAmplifier(); }, false), IsWaitOf(3.0 + 1.0 + 1.0 + 3.0));
}

TEST_F(HardwareTest, a_motor_test_waits_only_for_the_sound) {
    EXPECT_THAT(SecondsOf([] { return HardwareTests().TestReagentMotor(); }), IsWaitOf(3.0 + 3.0));
    EXPECT_THAT(SecondsOf([] { return HardwareTests().TestStirMotor(); }), IsWaitOf(3.0 + 3.0));
}

TEST_F(HardwareTest, a_good_reagent_motor_passes) { EXPECT_EQ(Test(3), (Texts{Silence, Restart, Passed})); }

TEST_F(HardwareTest, a_good_stir_motor_passes) { EXPECT_EQ(Test(4), (Texts{Silence, Restart, Passed})); }

TEST_F(HardwareTest, a_dead_reagent_motor_fails) {
    SetFault("pump-stage-dead");
    EXPECT_EQ(Test(3), (Texts{Silence, MotorFailed, Amber, Restart, Failed}));
    EXPECT_EQ(Test(4), (Texts{Silence, Restart, Passed}));
}

TEST_F(HardwareTest, a_dead_stir_motor_fails_with_the_reagent_motors_text) {
    SetFault("stir-stage-dead");
    EXPECT_EQ(Test(4), (Texts{Silence, MotorFailed, Amber, Restart, Failed}));
    EXPECT_EQ(Test(3), (Texts{Silence, Restart, Passed}));
}

TEST_F(HardwareTest, a_rise_of_exactly_half_a_volt_fails_the_reagent_motor) {
    Board().SetIioScale("1");
    SetSettings([](auto& settings) {
        settings.supplyIdle = 0.0;
        settings.supplyPump = 512.0 / 1024.0;
    });
    EXPECT_EQ(Test(3), (Texts{Silence, MotorFailed, Amber, Restart, Failed}));
    SetSettings([](auto& settings) { settings.supplyPump = 513.0 / 1024.0; });
    EXPECT_EQ(Test(3), (Texts{Silence, Restart, Passed}));
}

TEST_F(HardwareTest, a_rise_of_exactly_30_millivolts_fails_the_stir_motor) {
    Board().SetIioScale("0.06");
    SetSettings([](auto& settings) {
        settings.supplyIdle = 0.0;
        settings.supplyStir = 0.06 * 512 / 1024;
    });
    EXPECT_EQ(Test(4), (Texts{Silence, MotorFailed, Amber, Restart, Failed}));
    SetSettings([](auto& settings) { settings.supplyStir = 0.06 * 513 / 1024; });
    EXPECT_EQ(Test(4), (Texts{Silence, Restart, Passed}));
}

TEST_F(HardwareTest, the_reagent_motor_rests_runs_at_a_kilohertz_and_rests_again) {
    Board().ClearTrace();
    Test(3);
    EXPECT_EQ(TraceOf({"pioA", "pwm1/"}),
              (Texts{"pioA3/direction=out",    "pioA3/edge=none",   "pioA3/value=0",        // direction
                     "pioA2/direction=out",    "pioA2/edge=none",   "pioA2/value=1",        // chip off
                     "pioA4/direction=out",    "pioA4/edge=none",                           // current limit
                     "pioA5/direction=out",    "pioA5/edge=none",                           //
                     "pioA6/direction=out",    "pioA6/edge=none",                           //
                     "pioA4/value=1",          "pioA5/value=1",     "pioA6/value=1",        //
                     "pwm1/enable=0",          "pioA2/value=1",                             // at rest
                     "pioA4/value=1",          "pioA5/value=1",     "pioA6/value=1",        //
                     "pioA2/value=0",          "pwm1/duty_cycle=0", "pwm1/period=1000000",  //
                     "pwm1/duty_cycle=500000", "pwm1/enable=1",                             // running
                     "pwm1/enable=0",          "pioA2/value=1",                             // at rest
                     "pwm1/enable=0"}));
}

TEST_F(HardwareTest, the_stir_motor_rests_runs_at_a_kilohertz_and_rests_again) {
    Board().ClearTrace();
    Test(4);
    EXPECT_EQ(TraceOf({"pioB", "pwm2/"}),
              (Texts{"pioB15/direction=out", "pioB15/edge=none", "pioB15/value=1",  // chip off
                     "pwm2/enable=0", "pioB15/value=1",                             // at rest
                     "pioB15/value=0", "pwm2/duty_cycle=0", "pwm2/period=1000000",  //
                     "pwm2/duty_cycle=500000", "pwm2/enable=1",                     // running
                     "pwm2/enable=0", "pioB15/value=1",                             // at rest
                     "pwm2/enable=0"}));
}

TEST_F(HardwareTest, a_motor_that_cannot_be_set_up_fails_silently) {
    const GpioPin used({0, 2});
    EXPECT_EQ(Test(3), (Texts{Silence, Restart, Failed}));
    const GpioPin usedToo({1, 15});
    EXPECT_EQ(Test(4), (Texts{Silence, Restart, Failed}));
}

TEST_F(HardwareTest, a_motor_that_does_not_start_fails_silently) {
    SetFault("pwm-missing");
    EXPECT_EQ(Test(3), (Texts{Silence, Restart, Failed}));
    EXPECT_EQ(Test(4), (Texts{Silence, Restart, Failed}));
}

TEST_F(HardwareTest, a_motor_that_cannot_be_measured_fails) {
    SetFault("iio-missing");
    EXPECT_EQ(Test(3), (Texts{Silence, VoltageFailed, Restart, Failed}));
}

TEST_F(HardwareTest, a_motor_that_cannot_be_measured_running_is_stopped) {
    const std::uint64_t before = Board().CallCount("read");
    EXPECT_EQ(Test(3).back(), Passed);
    const int reads = static_cast<int>(Board().CallCount("read") - before);
    ASSERT_TRUE(Board().FailCall("read", reads - 1, EIO));  // the last is that of the channel's end
    EXPECT_EQ(Test(3), (Texts{Silence, VoltageFailed, Restart, Failed}));
    EXPECT_FALSE(Board().Pwm(1).enabled);
    EXPECT_TRUE(Board().Pin(0, 2).latch);
}

TEST_F(HardwareTest, all_four_run_in_order) {
    EXPECT_EQ(Test(5), (Texts{Silence, Play, Restart, Silence, Restart, Silence, Restart, Passed}));
}

TEST_F(HardwareTest, all_end_at_the_first_failure) {
    Board().SetMultiplexerVolts(10, 0.0);
    EXPECT_EQ(Test(5), (Texts{Rails[1].failure, Amber, Failed}));
    Board().ReleaseMultiplexer(10);
    SetFault("amplifier-dead");
    EXPECT_EQ(Test(5), (Texts{Silence, Play, AmplifierFailed, Amber, Restart, Failed}));
}

TEST_F(HardwareTest, all_end_at_a_failing_reagent_motor) {
    SetFault("pump-stage-dead");
    SetFault("stir-stage-dead");
    EXPECT_EQ(Test(5), (Texts{Silence, Play, Restart, Silence, MotorFailed, Amber, Restart, Failed}));
}

TEST_F(HardwareTest, an_unknown_selector_fails_without_a_test_and_is_answered) {
    for (const std::int32_t selector : {0, 6, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(Test(selector), Texts{Failed}) << selector;
    }
}

TEST_F(HardwareTest, only_requests_are_handled) {
    Request(1, RESPONSE_SUB_TYPE);
    Request(1, ACKNOWLEDGE_SUB_TYPE);
    Request(0);
    EXPECT_TRUE(Board().WaitUntil([this] { return witness.Heard().size() >= 4; }));
    EXPECT_EQ(witness.Heard(),
              (Texts{"test 1 verdict 0 as 1 from SystemControl", "test 1 verdict 0 as 2 from SystemControl",
                     "test 0 verdict 0 from SystemControl", Failed}));
}

// Without memory for the request.
TEST_F(HardwareTest, a_request_for_sound_that_fails_is_logged_and_not_waited_for) {
    struct Row {
        bool (*request)();
        const char* text;
    };
    const Row rows[] = {
        {TurnOffAudio, "log 3 DeviceMonitor::TurnOffAudio - Turning off audio failed from DeviceMonitor"},
        {[] { return PlayAudio("alert.wav"); },
         "log 3 DeviceMonitor::PlayAudio - Audio could not be started from DeviceMonitor"},
        {RestartAudio, "log 3 DeviceMonitor::RestartAudio - Audio could not be restarted from DeviceMonitor"},
    };
    for (const Row& row : rows) {
        witness.Forget();
        const FailingAllocation failing(1);
        EXPECT_THAT(SecondsOf(row.request, false), IsWaitOf(0.0));
        EXPECT_TRUE(Board().WaitUntil([this] { return witness.Heard().size() >= 2; }));
        EXPECT_EQ(witness.Heard(), (Texts{"log 3 Attempt to send NULL message from DeviceMonitor", row.text}));
    }
}

TEST_F(HardwareTest, without_silence_nothing_is_measured) {
    for (const std::int32_t selector : {2, 3, 4}) {
        FailingAllocation::FailSize(sizeof(RemoteIndicatorAudioControlMessage));
        EXPECT_EQ(Test(selector), (Texts{"log 3 Attempt to send NULL message from DeviceMonitor",
                                         "log 3 DeviceMonitor::TurnOffAudio - Turning off audio failed from "
                                         "DeviceMonitor",
                                         Restart, Failed}));
    }
}
