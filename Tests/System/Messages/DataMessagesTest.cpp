#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "System/Messages/AckTimerExpiredMessage.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/GUIResponseMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/MeasurementStepDataMessage.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "System/Messages/RemoteIndicatorAudioControlMessage.h"
#include "System/Messages/RemoteIndicatorCalculateCableLength.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "System/Messages/TimerCompleteMessage.h"
#include "System/Messages/UserInterfaceDataMessage.h"

namespace {

template <typename Message>
std::unique_ptr<Message> CloneOf(const Message& message) {
    return std::unique_ptr<Message>(static_cast<Message*>(message.Clone().release()));
}

template <typename Message>
class EveryDataMessage : public testing::Test {};

using DataMessages =
    testing::Types<AckTimerExpiredMessage, AdcStatusMessage, GUIResponseMessage, MeasurementMessage,
                   MeasurementStepDataMessage, PeriodicHardwareTestMessage, RemoteIndicatorAudioControlMessage,
                   RemoteIndicatorCalculateCableLength, RemoteIndicatorControlMessage, RemoteIndicatorTestMessage,
                   TestDigitalInputPinsMessage, TestDigitalOutputPinsMessage, TestPWMMessage, TimerCompleteMessage,
                   UserInterfaceDataMessage>;

TimeInfo TimeAt(time_t seconds, long nanoSeconds) {
    TimeInfo time;
    timespec value{};
    value.tv_sec = seconds;
    value.tv_nsec = nanoSeconds;
    time = value;
    return time;
}

}  // namespace

TYPED_TEST_SUITE(EveryDataMessage, DataMessages);

TYPED_TEST(EveryDataMessage, is_made_as_a_request_and_no_command) {
    const TypeParam message;
    EXPECT_FALSE(message.IsCommand());
    EXPECT_EQ(message.GetSubType(), 0);
}

TYPED_TEST(EveryDataMessage, keeps_type_sub_type_and_time_stamp_in_a_clone_of_a_clone) {
    TypeParam message;
    message.SetSubType(2);
    const auto clone = CloneOf(*CloneOf(message));
    EXPECT_EQ(clone->GetDataType(), message.GetDataType());
    EXPECT_EQ(clone->GetSubType(), 2);
    EXPECT_EQ(clone->GetTimeStamp(), message.GetTimeStamp());
}

TEST(DataMessages, have_the_type_that_their_subscribers_ask_for) {
    EXPECT_EQ(AdcStatusMessage().GetDataType(), 0);
    EXPECT_EQ(MeasurementMessage().GetDataType(), 3);
    EXPECT_EQ(MeasurementStepDataMessage().GetDataType(), 4);
    EXPECT_EQ(TimerCompleteMessage().GetDataType(), 6);
    EXPECT_EQ(RemoteIndicatorControlMessage().GetDataType(), 7);
    EXPECT_EQ(RemoteIndicatorCalculateCableLength().GetDataType(), 8);
    EXPECT_EQ(AckTimerExpiredMessage().GetDataType(), 12);
    EXPECT_EQ(TestDigitalInputPinsMessage().GetDataType(), 13);
    EXPECT_EQ(TestDigitalOutputPinsMessage().GetDataType(), 14);
    EXPECT_EQ(TestPWMMessage().GetDataType(), 15);
    EXPECT_EQ(RemoteIndicatorTestMessage().GetDataType(), 16);
    EXPECT_EQ(PeriodicHardwareTestMessage().GetDataType(), 17);
    EXPECT_EQ(RemoteIndicatorAudioControlMessage().GetDataType(), 18);
    EXPECT_EQ(UserInterfaceDataMessage().GetDataType(), 20);
    EXPECT_EQ(GUIResponseMessage().GetDataType(), 21);
}

TEST(DataMessages, have_a_clear_payload_when_they_are_made) {
    EXPECT_EQ(AckTimerExpiredMessage().GetValue(), 0);
    EXPECT_TRUE(AdcStatusMessage().GetAdcStatusInfo().GetReadings().empty());
    EXPECT_EQ(GUIResponseMessage().GetStatus(), 0);
    EXPECT_EQ(GUIResponseMessage().GetText(), "");
    EXPECT_EQ(PeriodicHardwareTestMessage().GetTestSelector(), 0);
    EXPECT_EQ(PeriodicHardwareTestMessage().GetVerdict(), 0);
    EXPECT_EQ(RemoteIndicatorAudioControlMessage().GetAction(), 0);
    EXPECT_EQ(RemoteIndicatorAudioControlMessage().GetFileName(), "");
    EXPECT_EQ(RemoteIndicatorCalculateCableLength().GetValue(), 0);
    EXPECT_EQ(RemoteIndicatorControlMessage().GetWaterStatus(), 0);
    EXPECT_EQ(RemoteIndicatorControlMessage().GetAnalyzerStatus(), 0);
    EXPECT_EQ(RemoteIndicatorControlMessage().GetStatusSelect(), 0);
    EXPECT_EQ(RemoteIndicatorTestMessage().GetTestId(), 0);
    EXPECT_EQ(RemoteIndicatorTestMessage().GetVerdict(), 0);
    EXPECT_EQ(TestDigitalInputPinsMessage().GetPinId(), 0);
    EXPECT_TRUE(TestDigitalInputPinsMessage().GetValues().empty());
    EXPECT_EQ(TestDigitalOutputPinsMessage().GetPinId(), 0);
    EXPECT_EQ(TestDigitalOutputPinsMessage().GetValue(), "");
    EXPECT_EQ(TestPWMMessage().GetId(), 0);
    EXPECT_EQ(TestPWMMessage().GetValue(), "");
    EXPECT_EQ(TimerCompleteMessage().GetDuration(), 0U);
    EXPECT_EQ(TimerCompleteMessage().GetDurationValue(), TimeAt(0, 0));
    EXPECT_EQ(UserInterfaceDataMessage().GetText(), "");
}

TEST(DataMessages, have_payloads_with_fixed_numbers) {
    EXPECT_EQ((std::vector<int>{BOARD_VOLTAGES_TEST, AUDIO_AMPLIFIER_TEST, REAGENT_MOTOR_TEST, STIR_MOTOR_TEST,
                                ALL_HARDWARE_TESTS}),
              (std::vector<int>{1, 2, 3, 4, 5}));
    EXPECT_EQ((std::vector<int>{WHOLE_INDICATOR_TEST, BLUE_ANALYZER_LED_TEST, AMBER_ANALYZER_LED_TEST,
                                RED_ANALYZER_LED_TEST, BLUE_WATER_LED_TEST, AMBER_WATER_LED_TEST, RED_WATER_LED_TEST}),
              (std::vector<int>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ((std::vector<int>{STOP_AUDIO, PLAY_AUDIO, RESTART_AUDIO}), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ((std::vector<int>{OFF_STATUS, NORMAL_STATUS, ALERT_STATUS, ALARM_STATUS}),
              (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ((std::vector<int>{BOTH_STATUSES, ANALYZER_STATUS, WATER_STATUS}), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ((std::vector<int>{ENABLE_PWM_FUNCTION, FREQUENCY_PWM_FUNCTION, DUTY_CYCLE_PWM_FUNCTION}),
              (std::vector<int>{0, 1, 2}));
    EXPECT_EQ((std::vector<int>{ENTERED_IDLE, ENTERED_RUNNING}), (std::vector<int>{-1, -2}));
}

TEST(MeasurementMessage, is_made_with_results_that_were_never_filled) {
    EXPECT_EQ(MeasurementMessage().GetMeasurementResults().GetChlorine(), 99999.9);
}

TEST(MeasurementMessage, clones_its_results) {
    MeasurementResults results;
    results.SetChlorine(0.75);
    results.SetMeasurementIndex(7);
    results.SetTime(TimeAt(1356955199, 5));
    MeasurementMessage message;
    message.SetMeasurementResults(results);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetMeasurementResults().GetChlorine(), 0.75);
    EXPECT_EQ(clone->GetMeasurementResults().GetMeasurementIndex(), 7U);
    EXPECT_EQ(clone->GetMeasurementResults().GetTime(), TimeAt(1356955199, 5));
}

TEST(StepParameters, that_were_never_filled_do_nothing) {
    const StepParameters step;
    EXPECT_EQ(step.stepType, NO_STEP);
    EXPECT_EQ(step.duration, 0U);
    EXPECT_FALSE(step.ledOn || step.stirringOn || step.adcMonitorOn || step.findStartPosition || step.sampleValveOn);
    EXPECT_EQ(step.motorAngle, 0.0F);
    EXPECT_EQ(step.motorSpeed, 0U);
}

TEST(MeasurementStepDataMessage, stays_without_results_in_a_clone) {
    EXPECT_EQ(CloneOf(MeasurementStepDataMessage())->GetStepResults(), nullptr);
}

TEST(MeasurementStepDataMessage, clones_its_results_deeply) {
    StepParameters step;
    step.stepType = MIXING_STEP;
    const StepResults results({{12.5, TimeAt(10, 20)}, {13.5, TimeAt(11, 21)}}, step);
    std::unique_ptr<MeasurementStepDataMessage> clone;
    {
        MeasurementStepDataMessage message;
        message.SetStepResults(&results);
        clone = CloneOf(message);
        EXPECT_NE(clone->GetStepResults(), message.GetStepResults());
    }
    ASSERT_NE(clone->GetStepResults(), nullptr);
    EXPECT_EQ(clone->GetStepResults()->GetStep().stepType, MIXING_STEP);
    ASSERT_EQ(clone->GetStepResults()->GetSamples().size(), 2U);
    EXPECT_EQ(clone->GetStepResults()->GetSamples()[1].GetCount(), 13.5);
    EXPECT_EQ(clone->GetStepResults()->GetSamples()[1].GetTime(), TimeAt(11, 21));
}

TEST(MeasurementStepDataMessage, keeps_a_copy_and_not_the_results_it_was_given) {
    StepResults results({{1.0, TimeAt(1, 1)}}, StepParameters());
    MeasurementStepDataMessage message;
    message.SetStepResults(&results);
    results.SetSamples({});
    EXPECT_NE(message.GetStepResults(), &results);
    EXPECT_EQ(message.GetStepResults()->GetSamples().size(), 1U);
}

TEST(MeasurementStepDataMessage, drops_the_results_it_held_for_null) {
    const StepResults results;
    MeasurementStepDataMessage message;
    message.SetStepResults(&results);
    message.SetStepResults(nullptr);
    EXPECT_EQ(message.GetStepResults(), nullptr);
}

TEST(MeasurementStepDataMessage, takes_the_results_that_it_holds_already) {
    const StepResults results({{1.0, TimeAt(1, 1)}}, StepParameters());
    MeasurementStepDataMessage message;
    message.SetStepResults(&results);
    message.SetStepResults(message.GetStepResults());
    EXPECT_EQ(message.GetStepResults()->GetSamples().size(), 1U);
}

TEST(AdcStatusMessage, clones_its_request_with_the_readings) {
    AdcStatusMessage message;
    message.GetAdcStatusInfo().SetSignalId(10084);
    message.GetAdcStatusInfo().SetSampleCount(3);
    message.GetAdcStatusInfo().AddReading(1, 2, 3);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetAdcStatusInfo().GetSignalId(), 10084);
    EXPECT_EQ(clone->GetAdcStatusInfo().GetSampleCount(), 3U);
    ASSERT_EQ(clone->GetAdcStatusInfo().GetReadings().size(), 1U);
    EXPECT_EQ(clone->GetAdcStatusInfo().GetReadings()[0].value, 3);
}

TEST(TestDigitalInputPinsMessage, clones_pin_and_values) {
    TestDigitalInputPinsMessage message;
    message.SetPinId(105);
    message.SetValues({'0', '1', '3'});
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetPinId(), 105);
    EXPECT_EQ(clone->GetValues(), (std::vector<char>{'0', '1', '3'}));
}

TEST(TestDigitalOutputPinsMessage, requests_a_read_by_default) {
    EXPECT_EQ(TestDigitalOutputPinsMessage().GetReadMarker(), 1);
}

TEST(TestDigitalOutputPinsMessage, clones_pin_read_marker_and_value) {
    TestDigitalOutputPinsMessage message;
    message.SetPinId(47);
    message.SetReadMarker(0);
    message.SetValue("1");
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetPinId(), 47);
    EXPECT_EQ(clone->GetReadMarker(), 0);
    EXPECT_EQ(clone->GetValue(), "1");
}

TEST(TestPWMMessage, requests_a_read_by_default) { EXPECT_EQ(TestPWMMessage().GetReadMarker(), 1); }

TEST(TestPWMMessage, clones_id_read_marker_and_value) {
    TestPWMMessage message;
    message.SetId(11);
    message.SetReadMarker(0);
    message.SetValue("99.5");
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetId(), 11);
    EXPECT_EQ(clone->GetReadMarker(), 0);
    EXPECT_EQ(clone->GetValue(), "99.5");
}

TEST(TimerCompleteMessage, clones_duration_its_value_with_format_and_next_command) {
    TimeInfo durationValue = TimeAt(1, 500000000);
    durationValue.SetFormat("%S");
    TimerCompleteMessage message;
    message.SetDuration(1500);
    message.SetDurationValue(durationValue);
    message.SetNextCommand(PRIME_SYSTEM);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetDuration(), 1500U);
    EXPECT_EQ(clone->GetDurationValue(), durationValue);
    EXPECT_EQ(clone->GetDurationValue().GetTimeString(3), "01.500");
    EXPECT_EQ(clone->GetNextCommand(), PRIME_SYSTEM);
}

TEST(AckTimerExpiredMessage, clones_its_word) {
    AckTimerExpiredMessage message;
    message.SetValue(-9);
    EXPECT_EQ(CloneOf(message)->GetValue(), -9);
}

TEST(RemoteIndicatorControlMessage, clones_both_statuses_and_the_selection) {
    RemoteIndicatorControlMessage message;
    message.SetWaterStatus(3);
    message.SetAnalyzerStatus(2);
    message.SetStatusSelect(1);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetWaterStatus(), 3);
    EXPECT_EQ(clone->GetAnalyzerStatus(), 2);
    EXPECT_EQ(clone->GetStatusSelect(), 1);
}

TEST(RemoteIndicatorTestMessage, clones_test_id_and_verdict) {
    RemoteIndicatorTestMessage message;
    message.SetTestId(6);
    message.SetVerdict(1);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetTestId(), 6);
    EXPECT_EQ(clone->GetVerdict(), 1);
}

TEST(PeriodicHardwareTestMessage, clones_selector_and_verdict) {
    PeriodicHardwareTestMessage message;
    message.SetTestSelector(5);
    message.SetVerdict(1);
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetTestSelector(), 5);
    EXPECT_EQ(clone->GetVerdict(), 1);
}

TEST(RemoteIndicatorAudioControlMessage, clones_action_and_file_name) {
    RemoteIndicatorAudioControlMessage message;
    message.SetAction(1);
    message.SetFileName("alert.wav");
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetAction(), 1);
    EXPECT_EQ(clone->GetFileName(), "alert.wav");
}

TEST(UserInterfaceDataMessage, clones_its_text) {
    UserInterfaceDataMessage message;
    message.SetText("12~Text");
    EXPECT_EQ(CloneOf(message)->GetText(), "12~Text");
}

TEST(GUIResponseMessage, clones_status_and_text) {
    GUIResponseMessage message;
    message.SetStatus(-1);
    message.SetText("Entered IDLE STATE");
    const auto clone = CloneOf(message);
    EXPECT_EQ(clone->GetStatus(), -1);
    EXPECT_EQ(clone->GetText(), "Entered IDLE STATE");
}
