#include "Drivers/RemoteIndicator.h"

#include <cerrno>
#include <cmath>
#include <limits>
#include <memory>

#include "Tests/Drivers/DriverTest.h"
#include "Tests/Support/SoundClip.h"

namespace {

using Log = std::vector<LogCall>;

LogCall Logged(const char* text) { return {text, ERROR_LOG_LEVEL, REMOTE_INDICATOR_CONTROL}; }

const LogCall InitFailed = Logged("RemoteIndicator::Init Configuring visual or audio failed");
const LogCall ColorsFailed = Logged("RemoteIndicator::SetLEDColors Setting visual or audio failed!");
const LogCall SingleFailed = Logged("RemoteIndicator::SetLEDColors Setting single LED color failed!");
const LogCall PairFailed = Logged("RemoteIndicator::LEDIsGood - color pair could not be set!");
const LogCall DemuxFailed = Logged("RemoteIndicator::LEDIsGood - demux could not be initialized!");
const LogCall VoltageFailed = Logged("RemoteIndicator::LEDIsGood - demux voltage could not be read!");
const LogCall LengthFailed = Logged("RemoteIndicator::CalculateCableLength failed!");
const LogCall LinesFailed = Logged("Demultiplexer::Init - Configuring demultiplexer driver GPIO failed!");
const LogCall ReadFailed{"Demultiplexer::ReadVoltage failed!", ERROR_LOG_LEVEL, DEVICE_MONITOR};

const std::string Pins = "/sys/class/gpio/";
const std::string Alert = "aplay -q /usr/share/vorn/bin/alert.wav";
const std::string Alarm = "aplay -q /usr/share/vorn/bin/alarm.wav";

// One letter a lit LED: of the analyzer in capitals, then of the water.
struct Lamp {
    int pin;  // of bank 3
    char letter;
};
constexpr Lamp Lamps[] = {{17, 'B'}, {16, 'A'}, {21, 'R'}, {18, 'b'}, {19, 'a'}, {20, 'r'}};

class Indicator : public DriverTest {
protected:
    Indicator() {
        LaySoundClip(Board().Folder(), "alert.wav", 1);
        LaySoundClip(Board().Folder(), "alarm.wav", 1);
        settings.alertFile = "alert.wav";
        settings.alarmFile = "alarm.wav";
        settings.alertGap = 3000000;
        settings.alarmGap = 1000000;
        settings.loopCurrentSenseResistance = 100.0F;
        settings.loopVoltageAmpGain = 3.0F;
        settings.blueLEDForwardVoltageDrop = 3.0F;
        settings.cableResistancePerFoot = 0.0625F;
        Board().SetIioScale("1.0");
    }

    ~Indicator() override {
        Quietly([this] { indicator.reset(); });
    }

    // Without the texts of player and pins.
    static void Quietly(const std::function<void()>& action) { PrintedBy(action); }

    void Init() {
        EXPECT_TRUE(indicator->Init(settings));
        TakeTrace();
        Board().ClearSoundCalls();
    }

    bool SetColors(std::uint32_t code) {
        bool result = false;
        Quietly([&] { result = indicator->SetLEDColors(code); });
        return result;
    }

    static std::string Lit() {
        std::string lit;
        for (const Lamp& lamp : Lamps) {
            lit += Board().Pin(3, lamp.pin).level ? std::string(1, lamp.letter) : "";
        }
        return lit;
    }

    static void WaitForSound(const std::string& call, std::size_t count = 1) {
        EXPECT_TRUE(Board().WaitUntil([&] {
            const Texts calls = Board().SoundCalls();
            return calls.size() >= count && calls.back() == call;
        })) << call;
    }

    // The written values of the six lines, in the order of writing.
    static Texts LineWrites() {
        Texts writes;
        for (const std::string& line : TakeTrace()) {
            if (line.rfind(Pins + "pioD", 0) == 0 && line.find("pioD10/") == std::string::npos &&
                line.find("/value=") != std::string::npos) {
                writes.push_back(line.substr(Pins.size()));
            }
        }
        return writes;
    }

    static Texts Writes(const char* values) {
        Texts writes;
        const char* const pins[] = {"pioD16", "pioD18", "pioD20", "pioD17", "pioD19", "pioD21"};
        for (std::size_t line = 0; line < 6; ++line) {
            writes.push_back(std::string(pins[line]) + "/value=" + values[line]);
        }
        return writes;
    }

    static void SetVolts(int channel, double volts) { Board().SetMultiplexerVolts(channel, volts); }

    // All LEDs sense that voltage.
    static void SetSense(double volts) {
        for (int channel = 1; channel <= 6; ++channel) {
            SetVolts(channel, volts);
        }
    }

    bool IsGood(std::uint32_t led) {
        bool good = false;
        Quietly([&] { good = indicator->LEDIsGood(led); });
        return good;
    }

    bool MeasureCable(float& feet) {
        bool measured = false;
        Quietly([&] { measured = indicator->CalculateCableLength(feet); });
        return measured;
    }

    RemoteIndicatorSettings settings;
    std::unique_ptr<RemoteIndicator> indicator = std::make_unique<RemoteIndicator>();
};

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

TEST_F(Indicator, sets_the_mixer_up_and_then_claims_its_lines_and_makes_them_low_outputs) {
    EXPECT_EQ(PrintedBy([this] { EXPECT_TRUE(indicator->Init(settings)); }), Silence);
    EXPECT_EQ(TakeTrace(), SettingUp());
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Indicator, releases_its_lines_at_its_end) {
    Init();
    indicator.reset();
    for (const Lamp& lamp : Lamps) {
        EXPECT_FALSE(Board().Pin(3, lamp.pin).claimed);
    }
}

TEST_F(Indicator, makes_no_lines_where_the_mixer_can_not_be_unmuted) {
    FailCall("system", 1, EAGAIN);
    EXPECT_FALSE(indicator->Init(settings));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Indicator, makes_no_lines_where_the_volume_can_not_be_set) {
    FailCall("system", 2, EAGAIN);
    EXPECT_FALSE(indicator->Init(settings));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace(), (Texts{"run amixer set -q 'Output Mixer HiFi' unmute"}));
}

TEST_F(Indicator, works_without_a_mixer_that_answers) {
    for (const char* fault : {"amixer-fails", "sound-tools-missing"}) {
        SetFault(fault);
        Quietly([this] { EXPECT_TRUE(indicator->Init(settings)); });
        ClearFault(fault);
        EXPECT_EQ(TakeLog(), Log{}) << fault;
    }
}

TEST_F(Indicator, stops_setting_up_at_the_first_line_that_refuses) {
    SetFault("write-refused=pioD20/value");
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->Init(settings)); }), OnError("unable to set the gpio value"));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace().back(), "/sys/class/gpio/pioD20/value=0 !EIO");
}

TEST_F(Indicator, sets_no_led_after_a_failed_init_but_takes_a_later_one) {
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

TEST_F(Indicator, forgets_that_it_worked_where_init_fails_again) {
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

class IndicatorColors : public Indicator, public testing::WithParamInterface<ColorCase> {};

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

TEST_F(Indicator, writes_all_six_lines_in_the_order_of_their_creation) {
    Init();
    SetColors(6);
    EXPECT_EQ(LineWrites(), Writes("101000"));
    SetColors(1);
    EXPECT_EQ(LineWrites(), Writes("010100"));
}

TEST_F(Indicator, plays_alert_and_alarm_each_with_its_own_gap) {
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

TEST_F(Indicator, is_silenced_by_a_code_that_does_not_exist_and_keeps_its_leds) {
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

TEST_F(Indicator, stops_at_the_first_line_that_can_not_be_written_and_keeps_silent) {
    Init();
    SetFault("write-refused=pioD20/value");
    EXPECT_FALSE(SetColors(2));
    EXPECT_EQ(LineWrites(), (Texts{"pioD16/value=0", "pioD18/value=0", "pioD20/value=0 !EIO"}));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
    EXPECT_EQ(Board().SoundCalls(), Texts{});
}

TEST_F(Indicator, comes_back_to_the_last_code_that_was_shown) {
    Init();
    SetColors(7);
    SetFault("write-refused=pioD16/value");
    EXPECT_FALSE(SetColors(1));
    ClearFault("write-refused");
    IsGood(0);
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(Indicator, fails_where_its_sound_can_not_be_started_and_shows_the_colours_all_the_same) {
    Init();
    FailCall("fork", 1, EAGAIN);
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->SetLEDColors(3)); }), OnError("Speaker: error in play fork"));
    EXPECT_EQ(Lit(), "Br");
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
}

TEST_F(Indicator, fails_at_a_sound_without_a_file_only_where_it_would_play_it) {
    settings.alertFile.clear();
    Init();
    EXPECT_TRUE(SetColors(2));
    EXPECT_EQ(Lit(), "Ba");
    EXPECT_FALSE(indicator->RestartPlay());
    EXPECT_EQ(Board().SoundCalls(), Texts{});
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Indicator, lights_one_led_alone) {
    Init();
    const char* const letters[] = {"B", "A", "R", "b", "a", "r"};
    for (std::uint32_t led = 0; led < 6; ++led) {
        EXPECT_TRUE(indicator->SetSingleLEDColor(led));
        EXPECT_EQ(Lit(), letters[led]);
    }
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Indicator, writes_every_line_once_for_a_single_led) {
    Init();
    indicator->SetSingleLEDColor(4);
    EXPECT_EQ(LineWrites(), Writes("000010"));
}

TEST_F(Indicator, turns_all_off_for_an_led_above_5) {
    Init();
    for (const std::uint32_t led : {6U, 32U, 0xFFFFFFFFU}) {
        SetColors(0);
        EXPECT_TRUE(indicator->SetSingleLEDColor(led));
        EXPECT_EQ(Lit(), "") << led;
    }
}

TEST_F(Indicator, says_so_where_a_single_led_can_not_be_set) {
    Init();
    SetFault("write-refused=pioD18/value");
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->SetSingleLEDColor(0)); }),
              OnError("unable to set the gpio value"));
    EXPECT_EQ(LineWrites(), (Texts{"pioD16/value=0", "pioD18/value=0 !EIO"}));
    EXPECT_EQ(TakeLog(), (Log{SingleFailed}));
}

TEST_F(Indicator, leaves_the_sound_alone_for_a_single_led) {
    Init();
    SetColors(3);
    WaitForSound(Alarm);
    indicator->SetSingleLEDColor(0);
    WaitForSound(Alarm, 3);
}

TEST_F(Indicator, senses_each_led_at_its_channel_while_it_is_lit_alone) {
    const struct {
        std::uint32_t led;
        int channel;
        const char* values;
    } rows[] = {{0, 2, "000100"}, {1, 1, "100000"}, {2, 6, "000001"}, {3, 3, "010000"},
                {4, 4, "000010"}, {5, 5, "001000"}, {6, 5, "000000"}, {0xFFFFFFFF, 5, "000000"}};
    Init();
    for (const auto& row : rows) {
        SetColors(1);
        SetSense(0.0);
        SetVolts(row.channel, 0.9);
        LineWrites();
        EXPECT_TRUE(IsGood(row.led)) << row.led;
        Texts expected = Writes(row.values);
        const Texts restored = Writes("010100");
        expected.insert(expected.end(), restored.begin(), restored.end());
        EXPECT_EQ(LineWrites(), expected) << row.led;
        SetSense(0.9);
        SetVolts(row.channel, 0.0);
        EXPECT_FALSE(IsGood(row.led)) << row.led;
    }
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Indicator, takes_exactly_half_a_volt_for_a_bad_led) {
    Init();
    Board().SetMultiplexerRaw(2, 512);
    EXPECT_FALSE(IsGood(0));
    Board().SetMultiplexerRaw(2, 513);
    EXPECT_TRUE(IsGood(0));
}

TEST_F(Indicator, sounds_again_after_the_test_of_an_led) {
    Init();
    SetColors(3);
    WaitForSound(Alarm);
    IsGood(0);
    EXPECT_EQ(Lit(), "Br");
    Board().ClearSoundCalls();
    WaitForSound(Alarm);
}

TEST_F(Indicator, does_not_come_back_to_its_colours_where_an_led_can_not_be_lit_alone) {
    Init();
    SetSense(0.9);
    SetColors(7);
    FailCall("write", 5, EIO);
    LineWrites();
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(LineWrites(),
              (Texts{"pioD16/value=0", "pioD18/value=0", "pioD20/value=0", "pioD17/value=1"}));  // the fifth failed
    EXPECT_EQ(TakeLog(), (Log{SingleFailed, PairFailed}));
}

TEST_F(Indicator, calls_an_led_bad_where_the_multiplexer_can_not_be_set_up) {
    Init();
    SetSense(0.9);
    SetColors(7);
    SetFault("write-refused=pioC27/value");
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{LinesFailed, DemuxFailed}));
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(Indicator, calls_an_led_bad_where_the_voltage_can_not_be_read) {
    Init();
    SetColors(7);
    SetFault("iio-missing");
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{ReadFailed, VoltageFailed}));
    EXPECT_EQ(Lit(), "Rb");
}

TEST_F(Indicator, calls_an_led_bad_where_the_colours_do_not_come_back) {
    Init();
    SetSense(0.9);
    SetColors(2);
    FailCall("fork", 1, EAGAIN);
    EXPECT_FALSE(IsGood(0));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed}));
}

TEST_F(Indicator, is_good_with_three_good_leds_and_bad_with_two) {
    Init();
    SetColors(1);
    SetSense(0.0);
    SetVolts(1, 0.9);
    SetVolts(6, 0.9);
    EXPECT_FALSE(indicator->IndicatorIsGood());
    SetVolts(3, 0.9);
    EXPECT_TRUE(indicator->IndicatorIsGood());
    SetSense(0.9);
    EXPECT_TRUE(indicator->IndicatorIsGood());
}

TEST_F(Indicator, is_tested_led_by_led) {
    Init();
    SetColors(1);
    TakeTrace();
    indicator->IndicatorIsGood();
    Texts expected;
    for (const char* values : {"000100", "100000", "000001", "010000", "000010", "001000"}) {
        for (const char* state : {values, "010100"}) {
            const Texts writes = Writes(state);
            expected.insert(expected.end(), writes.begin(), writes.end());
        }
    }
    EXPECT_EQ(LineWrites(), expected);
}

TEST_F(Indicator, computes_the_length_of_its_cable_with_blue_lit_on_both_sides) {
    Init();
    SetColors(7);
    Board().SetIioScale("4.0");
    SetVolts(2, 2.0);  // 20 mA
    SetVolts(0, 1.5);  // 4.5 V, 1.5 V of them over 75 ohms
    LineWrites();
    float feet = 0.0F;
    EXPECT_TRUE(MeasureCable(feet));
    EXPECT_FLOAT_EQ(feet, 1200.0F);
    Texts expected = Writes("010100");
    const Texts restored = Writes("010001");
    expected.insert(expected.end(), restored.begin(), restored.end());
    EXPECT_EQ(LineWrites(), expected);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Indicator, measures_cables_of_ten_a_hundred_and_a_thousand_feet_within_5_percent) {
    settings.blueLEDForwardVoltageDrop = 3.2F;
    settings.cableResistancePerFoot = 0.052F;
    Board().SetIioScale("3.222656250");
    Init();
    SetColors(1);
    for (const float cable : {10.0F, 100.0F, 1000.0F}) {
        SetFault("cable=" + std::to_string(cable));
        float feet = 0.0F;
        EXPECT_TRUE(MeasureCable(feet));
        EXPECT_NEAR(feet, cable, 0.05F * cable);
        ClearFault("cable");
    }
}

TEST_F(Indicator, reads_the_current_ahead_of_the_voltage) {
    Init();
    SetColors(1);
    TakeTrace();
    float feet = 0.0F;
    MeasureCable(feet);
    Texts selections;
    for (const std::string& line : TakeTrace()) {
        if (line.rfind(Pins + "pioC28/value=", 0) == 0) {
            selections.push_back(line.substr(line.size() - 1));
        }
    }
    EXPECT_EQ(selections, (Texts{"0", "1", "0"}));  // set up, channel 2, channel 0
}

TEST_F(Indicator, measures_no_cable_without_its_resistance_per_foot) {
    settings.cableResistancePerFoot = 0.0F;
    Init();
    SetColors(7);
    float feet = 7.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(feet, 7.0F);
    EXPECT_EQ(Lit(), "Rb");
    EXPECT_EQ(TakeLog(), (Log{LengthFailed}));
}

TEST_F(Indicator, measures_an_endless_cable_where_no_current_flows) {
    Init();
    SetColors(1);
    Board().SetIioScale("4.0");
    SetVolts(2, 0.0);
    SetVolts(0, 1.5);
    float feet = 0.0F;
    EXPECT_TRUE(MeasureCable(feet));
    EXPECT_EQ(feet, std::numeric_limits<float>::infinity());
}

TEST_F(Indicator, measures_no_cable_where_the_multiplexer_fails) {
    Init();
    SetColors(7);
    float feet = 7.0F;
    for (const char* fault : {"iio-missing", "write-refused=pioC31/value"}) {
        SetFault(fault);
        EXPECT_FALSE(MeasureCable(feet));
        EXPECT_EQ(TakeLog().back(), LengthFailed);
        EXPECT_EQ(Lit(), "Rb");
        ClearFault(std::string(fault).substr(0, std::string(fault).find('=')));
    }
    EXPECT_EQ(feet, 7.0F);
}

TEST_F(Indicator, measures_no_cable_where_blue_can_not_be_lit) {
    Init();
    SetColors(7);
    SetVolts(0, 0.9);
    SetVolts(2, 0.9);
    FailCall("write", 1, EIO);
    float feet = 7.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(feet, 7.0F);
    EXPECT_EQ(Lit(), "Rb");
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed, LengthFailed}));
}

TEST_F(Indicator, counts_a_cable_as_not_measured_where_the_colours_do_not_come_back) {
    Init();
    SetColors(2);
    FailCall("fork", 1, EAGAIN);
    float feet = 0.0F;
    EXPECT_FALSE(MeasureCable(feet));
    EXPECT_EQ(TakeLog(), (Log{ColorsFailed, LengthFailed}));
}

TEST_F(Indicator, plays_a_named_file_below_the_program_folder_and_none_without_a_name) {
    Init();
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(indicator->PlayFile("", 1000)); }), Silence);
    Quietly([this] { EXPECT_TRUE(indicator->PlayFile("alarm.wav", 1000)); });
    WaitForSound(Alarm);
}

TEST_F(Indicator, restarts_the_sound_of_its_colours) {
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

TEST_F(Indicator, has_nothing_to_restart_where_its_colours_are_silent_but_stops) {
    Init();
    SetColors(1);
    Quietly([this] {
        indicator->PlayFile("alarm.wav", 1000);
        EXPECT_FALSE(indicator->RestartPlay());
        EXPECT_TRUE(indicator->PlayFile("alarm.wav", 1000)) << "nothing plays any more";
    });
}
