#include "System/RemoteIndicatorControl/RemoteIndicatorControl.h"

#include <cerrno>
#include <tuple>

#include "System/Messages/RemoteIndicatorAudioControlMessage.h"
#include "System/Messages/RemoteIndicatorCalculateCableLength.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"
#include "Tests/Support/ControllerOnBoard.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/LitLeds.h"
#include "Tests/Support/Silence.h"

namespace {

const std::string InvalidColor = "RemoteIndicatorControl - Invalid color status!";
const std::string InvalidMessage = "RemoteIndicatorControl - Invalid data message!";
const std::string InitFailed = "RemoteIndicatorControl - Init method failed!";
const std::string ColorsFailed = "RemoteIndicator::SetLEDColors Setting visual or audio failed!";

const std::string Alert = "aplay -q /usr/share/vorn/bin/alert.wav";
const std::string Alarm = "aplay -q /usr/share/vorn/bin/alarm.wav";

class RemoteIndicatorControlTest : public ControllerOnBoard<RemoteIndicatorControl, REMOTE_INDICATOR_CONTROL> {
protected:
    RemoteIndicatorControlTest() {
        monitor = std::make_unique<CapturingController>(
            ControllerNames[SYSTEM_MONITOR],
            std::vector{REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE, REMOTE_INDICATOR_TEST_MESSAGE});
    }

    ~RemoteIndicatorControlTest() override { Stop(); }

    void PostColors(std::int32_t analyzer, std::int32_t water, std::int32_t select = 0,
                    std::int32_t subType = REQUEST_SUB_TYPE) {
        auto message = std::make_unique<RemoteIndicatorControlMessage>();
        message->SetSubType(subType);
        message->SetAnalyzerStatus(analyzer);
        message->SetWaterStatus(water);
        message->SetStatusSelect(select);
        Post(std::move(message));
    }

    void SetColors(std::int32_t analyzer, std::int32_t water, std::int32_t select = 0) {
        PostColors(analyzer, water, select);
        Barrier();
    }

    // The verdict of the reply.
    bool Test(std::int32_t id) {
        auto message = std::make_unique<RemoteIndicatorTestMessage>();
        message->SetTestId(id);
        Post(std::move(message));
        const auto& reply = monitor->Get<RemoteIndicatorTestMessage>(m_replies++);
        EXPECT_EQ(reply.GetDataType(), REMOTE_INDICATOR_TEST_MESSAGE);
        EXPECT_EQ(reply.GetSubType(), 1);
        EXPECT_EQ(reply.GetTestId(), 0);
        EXPECT_EQ(reply.GetSource(), &Get());
        return reply.GetVerdict() != 0;
    }

    void ControlAudio(std::int32_t action, const char* file = "") {
        auto message = std::make_unique<RemoteIndicatorAudioControlMessage>();
        message->SetAction(action);
        message->SetFileName(file);
        Post(std::move(message));
        Barrier();
    }

    void MeasureCable() {
        Post(std::make_unique<RemoteIndicatorCalculateCableLength>());
        Barrier();
    }

    std::string Lit() const { return LitLeds(Board()); }

    std::unique_ptr<CapturingController> monitor;

private:
    std::size_t m_replies = 0;
};

}  // namespace

TEST_F(RemoteIndicatorControlTest, initializes_the_mixer_and_shows_blue_without_sound) {
    Start();
    EXPECT_EQ(Lit(), "Bb");
    EXPECT_EQ(Board().SoundCalls(),
              (Texts{"amixer set -q 'Output Mixer HiFi' unmute", "amixer set -q Master 95%,95%"}));
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, stops_at_the_first_refused_registration) {
    Start();
    EXPECT_FALSE(Get().DoRegistration());
    EXPECT_FALSE(Get().Init());
    EXPECT_EQ(Errors(), (Texts{"RemoteIndicatorControl::DoRegistration failed!",
                               "RemoteIndicatorControl::DoRegistration failed!", InitFailed}));
}

TEST_F(RemoteIndicatorControlTest, ends_if_its_lines_are_taken) {
    LoadSettings();
    SetFault("gpio-taken=3,19");
    LaunchAndExpectEnd();
    EXPECT_EQ(Errors(), (Texts{"RemoteIndicator::Init Configuring visual or audio failed", InitFailed}));
}

TEST_F(RemoteIndicatorControlTest, ends_if_the_first_colors_cannot_be_set) {
    LoadSettings();
    // Three writes for each of six lines claimed and then set up; the next one sets the first color.
    ASSERT_TRUE(Board().FailCall("write", 6 * 3 + 6 * 3 + 1, EIO));
    LaunchAndExpectEnd();
    EXPECT_EQ(Errors(), (Texts{ColorsFailed, InitFailed}));
}

TEST_F(RemoteIndicatorControlTest, ends_where_the_device_can_not_be_made) {
    LoadSettings();
    FailingAllocation::FailSize(sizeof(RemoteIndicator));
    LaunchAndExpectEnd();
    EXPECT_EQ(Errors(), (Texts{InitFailed}));
}

TEST_F(RemoteIndicatorControlTest, works_without_sound_tools) {
    SetFault("sound-tools-missing");
    Start();
    SetColors(1, 3);
    EXPECT_EQ(Lit(), "Br");
    EXPECT_EQ(Errors(), Texts{});
}

namespace {

struct PairCase {
    std::int32_t analyzer;
    std::int32_t water;
    const char* lit;  // null: no color
};

class ControlPairs : public RemoteIndicatorControlTest, public testing::WithParamInterface<PairCase> {};

}  // namespace

TEST_P(ControlPairs, show_their_color_or_change_nothing) {
    Start();
    SetColors(2, 2);
    EXPECT_EQ(Lit(), "Aa");
    SetColors(GetParam().analyzer, GetParam().water);
    if (GetParam().lit != nullptr) {
        EXPECT_EQ(Lit(), GetParam().lit);
        EXPECT_EQ(Errors(), Texts{});
        return;
    }
    EXPECT_EQ(Lit(), "Aa");
    EXPECT_EQ(Errors(), (Texts{InvalidColor}));
    SetColors(0, 3, 2);  // the statuses are the former ones, too
    EXPECT_EQ(Lit(), "Ar");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ControlPairs,
    testing::Values(PairCase{0, 0, "BARbar"}, PairCase{0, 1, nullptr}, PairCase{0, 2, nullptr}, PairCase{0, 3, nullptr},
                    PairCase{1, 0, nullptr}, PairCase{1, 1, "Bb"}, PairCase{1, 2, "Ba"}, PairCase{1, 3, "Br"},
                    PairCase{2, 0, nullptr}, PairCase{2, 1, "Ab"}, PairCase{2, 2, "Aa"}, PairCase{2, 3, "Ar"},
                    PairCase{3, 0, "R"}, PairCase{3, 1, "Rb"}, PairCase{3, 2, "Ra"}, PairCase{3, 3, nullptr}),
    [](const auto& row) { return std::to_string(row.param.analyzer) + std::to_string(row.param.water); });

// Outside the table; most are next to a row with a color.
INSTANTIATE_TEST_SUITE_P(OutOfTable, ControlPairs,
                         testing::Values(PairCase{4, 1, nullptr}, PairCase{-1, 1, nullptr}, PairCase{0, 5, nullptr},
                                         PairCase{2, 4, nullptr}, PairCase{2, -1, nullptr}, PairCase{3, -2, nullptr},
                                         PairCase{2147483647, 2147483647, nullptr},
                                         PairCase{-2147483647 - 1, -2147483647 - 1, nullptr}));

TEST_F(RemoteIndicatorControlTest, plays_the_sound_of_its_colors) {
    Start();
    SetColors(1, 2);
    WaitForSound(Alert);
    SetColors(1, 3);
    WaitForSound(Alarm);
    SetColors(1, 1);
    EXPECT_TRUE(BecomesSilent(Board()));
}

TEST_F(RemoteIndicatorControlTest, applies_the_selected_statuses) {
    Start();
    SetColors(2, 3, 1);
    EXPECT_EQ(Lit(), "Ab");
    SetColors(1, 3, 2);
    EXPECT_EQ(Lit(), "Ar");
    SetColors(1, 1, 1);
    EXPECT_EQ(Lit(), "Br");
    SetColors(1, 2, 0);
    EXPECT_EQ(Lit(), "Ba");
    SetColors(3, 1, 3);
    EXPECT_EQ(Lit(), "Bb");
    SetColors(3, 2, -1);
    EXPECT_EQ(Lit(), "Ba");
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, acknowledges_each_request_with_an_empty_message) {
    Start();
    PostColors(2, 3);
    const auto& acknowledgement = monitor->Get<RemoteIndicatorControlMessage>();
    EXPECT_EQ(acknowledgement.GetSubType(), 2);
    EXPECT_EQ(acknowledgement.GetWaterStatus(), 0);
    EXPECT_EQ(acknowledgement.GetAnalyzerStatus(), 0);
    EXPECT_EQ(acknowledgement.GetStatusSelect(), 0);
    EXPECT_EQ(acknowledgement.GetSource(), &Get());
}

TEST_F(RemoteIndicatorControlTest, acknowledges_what_it_could_not_show) {
    Start();
    SetColors(3, 3);
    SetFault("write-refused=pioD16/value");
    SetColors(1, 2);
    EXPECT_EQ(monitor->Get<RemoteIndicatorControlMessage>(1).GetSubType(), 2);
    EXPECT_EQ(Errors(), (Texts{InvalidColor, ColorsFailed}));
}

TEST_F(RemoteIndicatorControlTest, remembers_the_statuses_that_it_could_not_show) {
    Start();
    SetFault("write-refused=pioD16/value");
    SetColors(2, 2);
    std::string error;
    ASSERT_TRUE(Board().ClearFault("write-refused", error)) << error;
    SetColors(0, 3, 2);
    EXPECT_EQ(Lit(), "Ar");
}

TEST_F(RemoteIndicatorControlTest, goes_on_where_the_acknowledgement_can_not_be_made) {
    Start();
    FailingAllocation::FailSize(sizeof(RemoteIndicatorControlMessage));
    SetColors(2, 2);
    EXPECT_EQ(Lit(), "Aa");
    EXPECT_EQ(monitor->Count(), 0U);
    SetColors(1, 1);
    EXPECT_EQ(monitor->Get<RemoteIndicatorControlMessage>().GetSubType(), 2);
}

TEST_F(RemoteIndicatorControlTest, passes_over_its_own_kinds_that_are_no_requests) {
    Start();
    for (const std::int32_t subType : {RESPONSE_SUB_TYPE, ACKNOWLEDGE_SUB_TYPE}) {
        PostColors(2, 2, 0, subType);
        auto test = std::make_unique<RemoteIndicatorTestMessage>();
        test->SetSubType(subType);
        Post(std::move(test));
        auto cable = std::make_unique<RemoteIndicatorCalculateCableLength>();
        cable->SetSubType(subType);
        Post(std::move(cable));
        auto audio = std::make_unique<RemoteIndicatorAudioControlMessage>();
        audio->SetSubType(subType);
        audio->SetAction(1);
        audio->SetFileName("alarm.wav");
        Post(std::move(audio));
    }
    Board().ClearTrace();
    Barrier();
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(monitor->Count(), 0U);
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, reports_any_other_kind) {
    Start();
    auto message = std::make_unique<LogInfoMessage>();
    Post(std::move(message));
    auto reply = std::make_unique<LogInfoMessage>();
    reply->SetSubType(RESPONSE_SUB_TYPE);
    Post(std::move(reply));
    Barrier();
    EXPECT_EQ(Errors(), (Texts{InvalidMessage, InvalidMessage}));
}

TEST_F(RemoteIndicatorControlTest, serves_in_every_state) {
    Start();
    for (const CommandType command : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        Tell(command);
        PostColors(3, 1);
        EXPECT_TRUE(Board().WaitUntil([this] { return Lit() == "Rb"; })) << CommandNames[command].Text();
        PostColors(1, 1);
        EXPECT_TRUE(Board().WaitUntil([this] { return Lit() == "Bb"; }));
    }
}

namespace {

// These tests set no colors, because acknowledgements would mix with the replies.
class ControlTests : public RemoteIndicatorControlTest,
                     public testing::WithParamInterface<std::tuple<int, const char*>> {};

}  // namespace

TEST_F(ControlTests, find_all_good_on_a_sound_indicator) {
    Start();
    for (std::int32_t id = 0; id <= 6; ++id) {
        EXPECT_TRUE(Test(id)) << id;
    }
    EXPECT_EQ(Lit(), "Bb");
    EXPECT_EQ(Errors(), Texts{});
}

TEST_P(ControlTests, find_the_broken_led_and_no_other) {
    const auto& [brokenId, name] = GetParam();
    SetFault((std::string("indicator-led-open=") + name).c_str());
    Start();
    for (std::int32_t id = 1; id <= 6; ++id) {
        EXPECT_EQ(Test(id), id != brokenId) << id;
    }
    EXPECT_TRUE(Test(0));
}

INSTANTIATE_TEST_SUITE_P(LEDs, ControlTests,
                         testing::Values(std::tuple(1, "blue-analyzer"), std::tuple(2, "amber-analyzer"),
                                         std::tuple(3, "red-analyzer"), std::tuple(4, "blue-water"),
                                         std::tuple(5, "amber-water"), std::tuple(6, "red-water")),
                         [](const auto& row) { return std::to_string(std::get<0>(row.param)); });

TEST_F(ControlTests, need_three_good_leds) {
    Start();
    for (const char* led : {"blue-analyzer", "red-water", "amber-water"}) {
        SetFault((std::string("indicator-led-open=") + led).c_str());
        EXPECT_TRUE(Test(0)) << led;
    }
    SetFault("indicator-led-open=red-analyzer");
    EXPECT_FALSE(Test(0));
}

TEST_F(ControlTests, look_at_the_blue_analyzer_led_for_any_other_id) {
    SetFault("indicator-led-open=blue-analyzer");
    Start();
    for (const std::int32_t id : {7, -1, 2147483647}) {
        EXPECT_FALSE(Test(id)) << id;
    }
    std::string error;
    ASSERT_TRUE(Board().ClearFault("indicator-led-open", error)) << error;
    EXPECT_TRUE(Test(7));
}

TEST_F(ControlTests, go_on_where_the_reply_can_not_be_made) {
    Start();
    FailingAllocation::FailSize(sizeof(RemoteIndicatorTestMessage));
    Post(std::make_unique<RemoteIndicatorTestMessage>());
    Barrier();
    EXPECT_EQ(monitor->Count(), 0U);
    EXPECT_TRUE(Test(1));
}

TEST_F(RemoteIndicatorControlTest, measures_the_cable_and_tells_nobody) {
    Start();
    SetColors(3, 1);
    monitor->Get<RemoteIndicatorControlMessage>();  // the acknowledgement
    MeasureCable();
    EXPECT_EQ(Lit(), "Rb");
    EXPECT_EQ(Errors(), Texts{});
    EXPECT_EQ(monitor->Count(), 1U);
}

TEST_F(RemoteIndicatorControlTest, says_so_where_the_cable_can_not_be_measured) {
    configuration.Set("CableResistancePerFoot", "0.0");
    Start();
    MeasureCable();
    EXPECT_EQ(Errors(), (Texts{"RemoteIndicator::CalculateCableLength failed!"}));
}

TEST_F(RemoteIndicatorControlTest, plays_a_named_file_with_a_gap_of_a_millisecond) {
    configuration.Set("AlarmFileGapBetweenPlay", "60000000");
    Start();
    ControlAudio(1, "alarm.wav");
    EXPECT_TRUE(Board().WaitUntil([this] {
        const Texts calls = Board().SoundCalls();
        return std::count(calls.begin(), calls.end(), Alarm) >= 3;
    }));
    ControlAudio(0);
    EXPECT_TRUE(BecomesSilent(Board()));
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, stops_a_sound_for_a_named_file_and_comes_back_to_it) {
    Start();
    SetColors(1, 2);
    WaitForSound(Alert);
    ControlAudio(1, "alarm.wav");
    WaitForSound(Alarm);
    ControlAudio(2);
    WaitForSound(Alert);
    ControlAudio(0);
    EXPECT_TRUE(BecomesSilent(Board()));
    ControlAudio(2);
    WaitForSound(Alert);
}

TEST_F(RemoteIndicatorControlTest, is_silent_for_a_file_without_a_name) {
    Start();
    SetColors(1, 2);
    WaitForSound(Alert);
    ControlAudio(1, "");
    EXPECT_TRUE(BecomesSilent(Board()));
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, restarts_nothing_for_silent_colors) {
    Start();
    ControlAudio(2);
    EXPECT_TRUE(BecomesSilent(Board()));
}

TEST_F(RemoteIndicatorControlTest, ignores_other_audio_actions) {
    Start();
    SetColors(1, 2);
    WaitForSound(Alert);
    for (const std::int32_t action : {3, -1}) {
        ControlAudio(action, "alarm.wav");
    }
    Board().ClearSoundCalls();
    WaitForSound(Alert);
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(RemoteIndicatorControlTest, reads_gaps_with_an_x_as_hexadecimal) {
    configuration.Set("AlarmFileGapBetweenPlay", "0x989680");  // ten seconds
    Start();
    SetColors(1, 3);
    std::vector<double> times;
    EXPECT_TRUE(Board().WaitUntil([&] {
        times.clear();
        for (const Bench::TraceEntry& entry : Board().TraceWithTimes()) {
            if (entry.text == "run " + Alarm) {
                times.push_back(entry.seconds);
            }
        }
        return times.size() >= 2;
    }));
    EXPECT_GE(times[1] - times[0], 10.0);
}

TEST_F(RemoteIndicatorControlTest, stops_the_player_at_its_end) {
    Start();
    SetColors(1, 3);
    WaitForSound(Alarm);
    EndGeneration();
    EXPECT_TRUE(BecomesSilent(Board()));
}
