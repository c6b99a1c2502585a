#include "Drivers/RemoteIndicator.h"

#include <cerrno>

#include "Tests/Drivers/IndicatorFixture.h"

namespace {

const LogCall InitFailed = Logged("RemoteIndicator::Init Configuring visual or audio failed");

std::vector<std::string> SettingUp() {
    std::vector<std::string> trace{"run amixer set -q 'Output Mixer HiFi' unmute", "run amixer set -q Master 95%,95%"};
    for (const int pin : {16, 18, 20, 17, 19, 21}) {
        const std::string directory = Pins + "pioD" + std::to_string(pin);
        trace.push_back(Pins + "export=" + std::to_string(96 + pin));
        trace.push_back(directory + "/direction=in");
        trace.push_back(directory + "/edge=none");
    }
    for (const int pin : {16, 18, 20, 17, 19, 21}) {
        const std::string directory = Pins + "pioD" + std::to_string(pin);
        trace.push_back(directory + "/direction=out");
        trace.push_back(directory + "/edge=none");
        trace.push_back(directory + "/value=0");
    }
    return trace;
}

}  // namespace

TEST_F(IndicatorDriver, sets_the_mixer_up_and_then_claims_its_lines_and_makes_them_low_outputs) {
    EXPECT_EQ(PrintedBy([this] { EXPECT_TRUE(indicator->Init(settings)); }), Silence);
    EXPECT_EQ(TakeTrace(), SettingUp());
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, releases_its_lines_at_its_end) {
    Init();
    indicator.reset();
    for (const Lamp& lamp : Lamps) {
        EXPECT_FALSE(Board().Pin(3, lamp.pin).claimed);
    }
}

TEST_F(IndicatorDriver, makes_no_lines_where_the_mixer_can_not_be_unmuted) {
    FailCall("system", 1, EAGAIN);
    EXPECT_FALSE(indicator->Init(settings));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(IndicatorDriver, makes_no_lines_where_the_volume_can_not_be_set) {
    FailCall("system", 2, EAGAIN);
    EXPECT_FALSE(indicator->Init(settings));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace(), (Texts{"run amixer set -q 'Output Mixer HiFi' unmute"}));
}

TEST_F(IndicatorDriver, works_without_a_mixer_that_answers) {
    for (const char* fault : {"amixer-fails", "sound-tools-missing"}) {
        SetFault(fault);
        Quietly([this] { EXPECT_TRUE(indicator->Init(settings)); });
        ClearFault(fault);
        EXPECT_EQ(TakeLog(), Log{}) << fault;
    }
}

TEST_F(IndicatorDriver, stops_setting_up_at_the_first_line_that_refuses) {
    SetFault("write-refused=pioD20/value");
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->Init(settings)); }), OnError("unable to set the gpio value"));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace().back(), "/sys/class/gpio/pioD20/value=0 !EIO");
}

TEST_F(IndicatorDriver, sets_no_led_after_a_failed_init_but_takes_a_later_one) {
    FailCall("system", 1, EAGAIN);
    indicator->Init(settings);
    TakeLog();
    EXPECT_FALSE(SetColors(1));
    EXPECT_FALSE(SetColors(2));
    EXPECT_FALSE(indicator->SetSingleLEDColor(0));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed, ColorsFailed, SingleFailed}));
    EXPECT_EQ(TakeTrace(), Texts{});
    Init();
    EXPECT_TRUE(SetColors(1));
}

TEST_F(IndicatorDriver, forgets_that_it_worked_where_init_fails_again) {
    Init();
    FailCall("system", 1, EAGAIN);
    EXPECT_FALSE(indicator->Init(settings));
    EXPECT_FALSE(SetColors(1));
    EXPECT_EQ(TakeLog(), (Log{InitFailed, ColorsFailed}));
}

namespace {

struct ColorCase {
    std::uint32_t code;
    const char* lit;
    std::string sound;
};

class IndicatorColors : public IndicatorDriver, public testing::WithParamInterface<ColorCase> {};

}  // namespace

TEST_P(IndicatorColors, light_and_sound_as_their_code_says) {
    Init();
    EXPECT_TRUE(SetColors(GetParam().code));
    EXPECT_EQ(Lit(), GetParam().lit);
    if (!GetParam().sound.empty()) {
        WaitForSound(GetParam().sound);
    }
    Quietly([this] { indicator->Stop(); });
    Texts calls = Board().SoundCalls();
    calls.erase(std::unique(calls.begin(), calls.end()), calls.end());
    EXPECT_EQ(calls, GetParam().sound.empty() ? Texts{} : Texts{GetParam().sound});
    EXPECT_EQ(TakeLog(), Log{});
}

INSTANTIATE_TEST_SUITE_P(Codes, IndicatorColors,
                         testing::Values(ColorCase{0, "BARbar", ""},  //
                                         ColorCase{1, "Bb", ""},      //
                                         ColorCase{2, "Ba", Alert},   //
                                         ColorCase{3, "Br", Alarm},   //
                                         ColorCase{4, "Ab", Alert},   //
                                         ColorCase{5, "Aa", Alert},   //
                                         ColorCase{6, "Ar", Alarm},   //
                                         ColorCase{7, "Rb", ""},      //
                                         ColorCase{8, "Ra", ""},      //
                                         ColorCase{9, "R", Alert}),
                         [](const auto& row) { return std::to_string(row.param.code); });

TEST_F(IndicatorDriver, writes_all_six_lines_in_the_order_of_their_creation) {
    Init();
    SetColors(6);
    EXPECT_EQ(LineWrites(), Writes("101000"));
    SetColors(1);
    EXPECT_EQ(LineWrites(), Writes("010100"));
}

TEST_F(IndicatorDriver, plays_alert_and_alarm_each_with_its_own_gap) {
    Init();
    for (const auto& [code, call, seconds] :
         {std::tuple(2U, "run " + Alert, 4.0), std::tuple(3U, "run " + Alarm, 2.0)}) {
        SetColors(code);
        std::vector<double> times;
        EXPECT_TRUE(Board().WaitUntil([&] {
            times.clear();
            for (const Bench::TraceEntry& entry : Board().TraceWithTimes()) {
                if (entry.text == call) {
                    times.push_back(entry.seconds);
                }
            }
            return times.size() >= 2;
        }));
        EXPECT_GE(times[1] - times[0], seconds);
    }
}

TEST_F(IndicatorDriver, is_silenced_by_a_code_that_does_not_exist_and_keeps_its_leds) {
    for (const std::uint32_t code : {10U, 0xFFFFFFFFU}) {
        Init();
        SetColors(3);
        WaitForSound(Alarm);
        EXPECT_FALSE(SetColors(code));
        EXPECT_EQ(Lit(), "Br");
        EXPECT_FALSE(indicator->RestartPlay());
        EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
        Quietly([this] { EXPECT_TRUE(indicator->PlayFile("alert.wav", 1000)) << "nothing plays any more"; });
        Quietly([this] { indicator->Stop(); });
    }
}

TEST_F(IndicatorDriver, stops_at_the_first_line_that_can_not_be_written_and_keeps_silent) {
    Init();
    SetFault("write-refused=pioD20/value");
    EXPECT_FALSE(SetColors(2));
    EXPECT_EQ(LineWrites(), (Texts{"pioD16/value=0", "pioD18/value=0", "pioD20/value=0 !EIO"}));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
    EXPECT_EQ(Board().SoundCalls(), Texts{});
}

TEST_F(IndicatorDriver, comes_back_to_the_last_code_that_was_shown) {
    Init();
    SetColors(7);
    SetFault("write-refused=pioD16/value");
    EXPECT_FALSE(SetColors(1));
    ClearFault("write-refused");
    IsGood(0);
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(IndicatorDriver, fails_where_its_sound_can_not_be_started_and_shows_the_colours_all_the_same) {
    Init();
    FailCall("fork", 1, EAGAIN);
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->SetLEDColors(3)); }), OnError("Speaker: error in play fork"));
    EXPECT_EQ(Lit(), "Br");
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
}

TEST_F(IndicatorDriver, fails_at_a_sound_without_a_file_only_where_it_would_play_it) {
    settings.alertFile.clear();
    Init();
    EXPECT_TRUE(SetColors(2));
    EXPECT_EQ(Lit(), "Ba");
    EXPECT_FALSE(indicator->RestartPlay());
    EXPECT_EQ(Board().SoundCalls(), Texts{});
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, lights_one_led_alone) {
    Init();
    const char* const letters[] = {"B", "A", "R", "b", "a", "r"};
    for (std::uint32_t led = 0; led < 6; ++led) {
        EXPECT_TRUE(indicator->SetSingleLEDColor(led));
        EXPECT_EQ(Lit(), letters[led]);
    }
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, writes_every_line_once_for_a_single_led) {
    Init();
    indicator->SetSingleLEDColor(4);
    EXPECT_EQ(LineWrites(), Writes("000010"));
}

TEST_F(IndicatorDriver, turns_all_off_for_an_led_above_5) {
    Init();
    for (const std::uint32_t led : {6U, 32U, 0xFFFFFFFFU}) {
        SetColors(0);
        EXPECT_TRUE(indicator->SetSingleLEDColor(led));
        EXPECT_EQ(Lit(), "") << led;
    }
}

TEST_F(IndicatorDriver, says_so_where_a_single_led_can_not_be_set) {
    Init();
    SetFault("write-refused=pioD18/value");
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->SetSingleLEDColor(0)); }),
              OnError("unable to set the gpio value"));
    EXPECT_EQ(LineWrites(), (Texts{"pioD16/value=0", "pioD18/value=0 !EIO"}));
    EXPECT_EQ(TakeLog(), (Log{SingleFailed}));
}

TEST_F(IndicatorDriver, leaves_the_sound_alone_for_a_single_led) {
    Init();
    SetColors(3);
    WaitForSound(Alarm);
    indicator->SetSingleLEDColor(0);
    WaitForSound(Alarm, 3);
}

TEST_F(IndicatorDriver, plays_a_named_file_below_the_program_folder_and_none_without_a_name) {
    Init();
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->PlayFile("", 1000)); }), Silence);
    Quietly([this] { EXPECT_TRUE(indicator->PlayFile("alarm.wav", 1000)); });
    WaitForSound(Alarm);
}

TEST_F(IndicatorDriver, restarts_the_sound_of_its_colours) {
    Init();
    SetColors(2);
    WaitForSound(Alert);
    Quietly([this] {
        indicator->Stop();
        EXPECT_TRUE(indicator->PlayFile("alarm.wav", 1000));
        WaitForSound(Alarm);
        EXPECT_TRUE(indicator->RestartPlay());
    });
    WaitForSound(Alert);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(IndicatorDriver, has_nothing_to_restart_where_its_colours_are_silent_but_stops) {
    Init();
    SetColors(1);
    Quietly([this] {
        indicator->PlayFile("alarm.wav", 1000);
        EXPECT_FALSE(indicator->RestartPlay());
        EXPECT_TRUE(indicator->PlayFile("alarm.wav", 1000)) << "nothing plays any more";
    });
}
