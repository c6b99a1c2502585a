// From a chlorine value to the remote indicator's colors and sound, in the whole system.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <limits>

#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"
#include "Tests/Support/LitLeds.h"
#include "Tests/Support/Silence.h"
#include "Tests/Support/SystemFixture.h"

namespace {

const std::string Alert = "aplay -q /usr/share/vorn/bin/alert.wav";
const std::string Alarm = "aplay -q /usr/share/vorn/bin/alarm.wav";
const std::string NoAcknowledgement = "SystemMonitor::Did not receive an ACK message from the remote indicator!";
const std::string NotConnected = "Remote indicator is not connected!";
const std::string InitFailed = "RemoteIndicatorControl - Init method failed!";

class WaterIndicator : public SystemOnBoard {
protected:
    WaterIndicator() : SystemOnBoard(50.0) {}

    void StartIdle() {
        Start();
        WaitForIdle();
    }

    // As a cycle with that result would.
    static void Publish(double chlorine) {
        MeasurementResults results;
        results.SetChlorine(chlorine);
        auto message = std::make_unique<MeasurementMessage>();
        message->SetMeasurementResults(results);
        EXPECT_TRUE(MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE));
    }

    std::string Lit() const { return LitLeds(Board()); }

    void WaitForColors(const std::string& lit, double realSeconds = 60.0) const {
        EXPECT_TRUE(Board().WaitUntil([&] { return Lit() == lit; }, realSeconds)) << Lit() << ", not " << lit;
    }

    static void ExpectNoChild() {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }

    void SetChlorine(double milligramsPerLitre) const {
        Bench::InstrumentSettings settings = Board().Settings();
        settings.chlorine = milligramsPerLitre;
        Board().SetSettings(settings);
    }
};

}  // namespace

TEST_F(WaterIndicator, follows_the_water_through_cycles) {
    configuration.Set("AutoStartMeasurement", "true").Set("AutoStartDelay", "1000");
    constexpr double RealSecondsForCycles = 200.0;
    SetChlorine(0.95);
    Start();
    WaitForColors("Br", RealSecondsForCycles);
    WaitForSound(Alarm);
    SetChlorine(0.65);
    WaitForColors("Ba", RealSecondsForCycles);
    WaitForSound(Alert);
    SetChlorine(0.20);
    WaitForColors("Bb", RealSecondsForCycles);
    EXPECT_TRUE(BecomesSilent(Board()));
}

TEST_F(WaterIndicator, shows_alarm_alert_and_normal_with_their_sounds) {
    StartIdle();
    Board().SetSpeed(10.0);  // a slow machine has to start a player within the acknowledgement time
    EXPECT_EQ(Lit(), "Bb");
    Publish(0.9);
    WaitForColors("Br");
    WaitForSound(Alarm);
    Publish(0.6);
    WaitForColors("Ba");
    WaitForSound(Alert);
    Publish(0.2);
    WaitForColors("Bb");
    EXPECT_TRUE(BecomesSilent(Board()));
    EXPECT_EQ(CountOf(NoAcknowledgement), 0);
}

TEST_F(WaterIndicator, takes_a_value_on_a_level_as_reaching_it) {
    StartIdle();
    Publish(0.8);
    WaitForColors("Br");
    Publish(0.5);
    WaitForColors("Ba");
}

TEST_F(WaterIndicator, falls_back_from_an_alarm_with_one_low_value) {
    StartIdle();
    Publish(0.9);
    WaitForColors("Br");
    WaitForSound(Alarm);
    Publish(0.4999);
    WaitForColors("Bb");
    EXPECT_TRUE(BecomesSilent(Board()));
}

TEST_F(WaterIndicator, takes_not_a_number_as_normal) {
    StartIdle();
    Publish(0.9);
    WaitForColors("Br");
    Publish(std::numeric_limits<double>::quiet_NaN());
    WaitForColors("Bb");
}

TEST_F(WaterIndicator, uses_the_levels_of_the_settings_after_a_reset) {
    StartIdle();
    Publish(0.6);
    WaitForColors("Ba");
    Reset();
    configuration.Set("AlarmLevel", "0.55");
    StartIdle();
    Publish(0.6);
    WaitForColors("Br");
}

TEST_F(WaterIndicator, distinguishes_a_broken_led_from_a_good_one) {
    SetFault("indicator-led-open=blue-water");
    StartIdle();
    for (const std::int32_t id : {4, 5}) {  // blue and amber of the water
        auto request = std::make_unique<RemoteIndicatorTestMessage>();
        request->SetTestId(id);
        EXPECT_TRUE(MessageController::SendMessage(std::move(request), SYSTEM_MONITOR));
        WaitFor("Data Message (REMOTE_INDICATOR_TEST_MESSAGE) : From - RemoteIndicatorControl : To - MessagingControl",
                id - 3);
    }
    // The monitor waits for the whole test, the first after the start.
    WaitFor(NotConnected);
    Publish(0.6);
    WaitForColors("Ba");
    EXPECT_EQ(CountOf(NotConnected), 1);
}

TEST_F(WaterIndicator, shows_its_colors_without_sound_tools) {
    SetFault("sound-tools-missing");
    StartIdle();
    Publish(0.9);
    WaitForColors("Br");
    Publish(0.2);
    WaitForColors("Bb");
    EXPECT_EQ(Board().SoundCalls(), std::vector<std::string>{});
}

TEST_F(WaterIndicator, sounds_although_the_mixer_does_not_answer) {
    SetFault("amixer-fails");
    StartIdle();
    Publish(0.9);
    WaitForColors("Br");
    WaitForSound(Alarm);
}

TEST_F(WaterIndicator, is_missing_if_its_lines_are_taken) {
    SetFault("gpio-taken=indicator");
    configuration.Set("AckTimeout", "2000");
    Start();
    WaitFor(InitFailed);
    EXPECT_TRUE(Board().WaitUntil([] { return IsIdle(SYSTEM_CONTROL) && IsIdle(SYSTEM_MONITOR); }));
    Publish(0.9);
    WaitFor(NoAcknowledgement);
    Publish(0.9);
    WaitFor(NoAcknowledgement, 2);
    EXPECT_EQ(Lit(), "");
    Send(MOVE_TO_RUNNING);
    WaitFor("Changing to RUNNING_STATE State for - SystemMonitor");
    Board().ClearLog();
    Send(MOVE_TO_IDLE);
    WaitFor("Changing to IDLE_STATE State for - MeasurementEngine");
}

TEST_F(WaterIndicator, returns_with_a_reset_once_its_lines_are_free) {
    SetFault("gpio-taken=3,20");
    Start();
    WaitFor(InitFailed);
    Reset();
    std::string error;
    ASSERT_TRUE(Board().ClearFault("gpio-taken", error)) << error;
    StartIdle();
    Publish(0.9);
    WaitForColors("Br");
}

TEST_F(WaterIndicator, ends_its_player_in_a_reset_after_the_clip) {
    StartIdle();
    Publish(0.9);
    WaitForSound(Alarm);
    Reset();
    ExpectNoChild();
    EXPECT_TRUE(BecomesSilent(Board()));
    EXPECT_FALSE(Board().Pin(3, 20).claimed);
}

TEST_F(WaterIndicator, resets_at_once_while_an_acknowledgement_is_awaited) {
    configuration.Set("AckTimeout", "86400000");
    StartIdle();
    Publish(0.2);
    Publish(0.2);
    WaitFor("Data Message (REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE) : From - SystemMonitor : To - MessagingControl",
            2);
    Reset();
    EXPECT_EQ(CountOf(NoAcknowledgement), 0);
}

TEST_F(WaterIndicator, resets_in_the_middle_of_a_change_of_sound) {
    for (int generation = 0; generation < 3; ++generation) {
        StartIdle();
        Publish(0.9);
        WaitForSound(Alarm);
        Publish(0.6);
        Reset();
        ExpectNoChild();
    }
}
