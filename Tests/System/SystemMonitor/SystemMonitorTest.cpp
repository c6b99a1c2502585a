#include "System/SystemMonitor/SystemMonitor.h"

#include <cmath>
#include <limits>

#include "System/Messages/AckTimerExpiredMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"
#include "Tests/Support/ControllerOnBoard.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/ImpossibleStack.h"

namespace {

const std::string NoAcknowledgement = "SystemMonitor::Did not receive an ACK message from the remote indicator!";
const std::string NotConnected = "Remote indicator is not connected!";

class SystemMonitorTest : public ControllerOnBoard<SystemMonitor, SYSTEM_MONITOR> {
protected:
    SystemMonitorTest() { MakeIndicator(); }

    ~SystemMonitorTest() override { Stop(); }

    void MakeIndicator() {
        indicator = std::make_unique<CapturingController>(
            ControllerNames[REMOTE_INDICATOR_CONTROL],
            std::vector{REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE, REMOTE_INDICATOR_TEST_MESSAGE});
    }

    void Restart() {
        Stop();
        indicator.reset();
        Renew();
        MakeIndicator();
        Start();
    }

    static std::unique_ptr<MessageBase> Measured(double chlorine) {
        MeasurementResults results;
        results.SetChlorine(chlorine);
        auto message = std::make_unique<MeasurementMessage>();
        message->SetMeasurementResults(results);
        return message;
    }

    static std::unique_ptr<MessageBase> Acknowledgement(std::int32_t subType = ACKNOWLEDGE_SUB_TYPE) {
        auto message = std::make_unique<RemoteIndicatorControlMessage>();
        message->SetSubType(subType);
        return message;
    }

    static std::unique_ptr<MessageBase> Verdict(bool good, std::int32_t subType = RESPONSE_SUB_TYPE) {
        auto message = std::make_unique<RemoteIndicatorTestMessage>();
        message->SetSubType(subType);
        message->SetVerdict(good ? 1 : 0);
        return message;
    }

    // The water status that the next request to the indicator carries.
    std::int32_t StatusFor(double chlorine) {
        Post(Measured(chlorine));
        return indicator->Get<RemoteIndicatorControlMessage>(m_requests++).GetWaterStatus();
    }

    std::size_t ExpiriesLogged() {
        Barrier();
        const Texts errors = Errors();
        return static_cast<std::size_t>(std::count(errors.begin(), errors.end(), NoAcknowledgement));
    }

    std::unique_ptr<CapturingController> indicator;

private:
    std::size_t m_requests = 0;
};

}  // namespace

TEST_F(SystemMonitorTest, lets_other_commands_pass) {
    Start();
    for (const CommandType command : {RESET_SYSTEM, PRIME_SYSTEM, COLLECT_MEASUREMENT, NO_COMMAND}) {
        Tell(command);
    }
    Barrier();
    EXPECT_EQ(Errors(), Texts{});
    EXPECT_EQ(indicator->Count(), 0U);
}

TEST_F(SystemMonitorTest, does_not_initialize_if_registration_fails) {
    Start();
    EXPECT_FALSE(Get().Init());
    const Texts errors = Errors();
    ASSERT_EQ(errors.size(), 6U);
    EXPECT_EQ(errors.back(), "System Monitor - DoRegistration failed!");
}

TEST_F(SystemMonitorTest, ends_if_its_timer_cannot_be_allocated) {
    LoadSettings();
    FailingAllocation::FailSize(sizeof(RemoteIndicatorAckTimer));
    LaunchAndExpectEnd();
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(SystemMonitorTest, gives_the_water_status_of_each_value) {
    Start();
    EXPECT_EQ(StatusFor(0.9), 3);
    EXPECT_EQ(StatusFor(0.6), 2);
    EXPECT_EQ(StatusFor(0.2), 1);
    EXPECT_EQ(StatusFor(-1.0), 1);
    EXPECT_EQ(StatusFor(99999.9), 3);
}

TEST_F(SystemMonitorTest, takes_the_level_that_a_value_lies_on) {
    Start();
    EXPECT_EQ(StatusFor(0.8), 3);
    EXPECT_EQ(StatusFor(0.5), 2);
    EXPECT_EQ(StatusFor(std::nextafter(0.8F, 0.0F)), 2);
    EXPECT_EQ(StatusFor(std::nextafter(0.5F, 0.0F)), 1);
}

TEST_F(SystemMonitorTest, looks_at_no_more_than_the_precision_of_a_level) {
    Start();
    EXPECT_EQ(StatusFor(0.8 - 1e-12), 3);
}

TEST_F(SystemMonitorTest, compares_the_alarm_level_first) {
    configuration.Set("AlarmLevel", "0.5").Set("AlertLevel", "0.8");
    Start();
    EXPECT_EQ(StatusFor(0.6), 3);
    EXPECT_EQ(StatusFor(0.4), 1);
}

TEST_F(SystemMonitorTest, takes_what_is_no_number_for_normal) {
    Start();
    EXPECT_EQ(StatusFor(std::numeric_limits<double>::quiet_NaN()), 1);
}

TEST_F(SystemMonitorTest, judges_each_value_independently) {
    Start();
    EXPECT_EQ(StatusFor(0.9), 3);
    EXPECT_EQ(StatusFor(0.2), 1);
    EXPECT_EQ(StatusFor(0.2), 1);
}

TEST_F(SystemMonitorTest, asks_for_the_water_status_alone) {
    Start();
    Post(Measured(0.9));
    const auto& request = indicator->Get<RemoteIndicatorControlMessage>();
    EXPECT_EQ(request.GetSubType(), 0);
    EXPECT_EQ(request.GetStatusSelect(), 2);
    EXPECT_EQ(request.GetAnalyzerStatus(), 0);
    EXPECT_EQ(request.GetSource(), &Get());
}

TEST_F(SystemMonitorTest, judges_in_every_state) {
    Start();
    std::size_t count = 0;
    for (const CommandType command : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        Tell(command);
        EXPECT_EQ(StatusFor(0.9), 3) << CommandNames[command].Text();
        ++count;
    }
    EXPECT_EQ(indicator->Count(), count);
}

TEST_F(SystemMonitorTest, logs_an_acknowledgement_that_does_not_come_in_time) {
    configuration.Set("AckTimeout", "2000");
    Start();
    const double start = Board().Seconds();
    Post(Measured(0.2));
    WaitForLine(NoAcknowledgement);
    EXPECT_THAT(Board().Seconds() - start, IsWaitOf(2.0));
    EXPECT_EQ(indicator->Count(), 1U) << "nothing is asked again";
    EXPECT_EQ(Errors(), (Texts{NoAcknowledgement}));
}

TEST_F(SystemMonitorTest, misses_an_expiry_that_memory_has_run_out_for) {
    configuration.Set("AckTimeout", "2000");
    Start();
    FailingAllocation::FailSize(sizeof(AckTimerExpiredMessage));
    Post(Measured(0.2));
    LetPass(4.0);
    EXPECT_EQ(ExpiriesLogged(), 0U);
    Post(Measured(0.2));
    WaitForLine(NoAcknowledgement);
}

TEST_F(SystemMonitorTest, takes_a_time_out_with_an_x_for_hexadecimal) {
    configuration.Set("AckTimeout", "0x2710");
    Start();
    const double start = Board().Seconds();
    Post(Measured(0.2));
    WaitForLine(NoAcknowledgement);
    EXPECT_THAT(Board().Seconds() - start, IsWaitOf(10.0));
}

TEST_F(SystemMonitorTest, is_content_with_an_acknowledgement_in_time) {
    configuration.Set("AckTimeout", "2000");
    Start();
    Post(Measured(0.2));
    Post(Acknowledgement());
    LetPass(5.0);
    EXPECT_EQ(ExpiriesLogged(), 0U);
}

TEST_F(SystemMonitorTest, accepts_only_an_acknowledgement) {
    configuration.Set("AckTimeout", "2000");
    Start();
    Post(Measured(0.2));
    Post(Acknowledgement(REQUEST_SUB_TYPE));
    Post(Acknowledgement(RESPONSE_SUB_TYPE));
    WaitForLine(NoAcknowledgement);
}

TEST_F(SystemMonitorTest, a_restarted_timer_expires_for_both_requests) {
    configuration.Set("AckTimeout", "3000");
    Start();
    Post(Measured(0.2));
    Post(Acknowledgement());
    Post(Measured(0.2));  // lifts the cancelling: both sleeps run out
    WaitForLine(NoAcknowledgement, 2);
}

TEST_F(SystemMonitorTest, cancels_all_sleeps_with_one_acknowledgement) {
    configuration.Set("AckTimeout", "3000");
    Start();
    Post(Measured(0.2));
    Post(Measured(0.2));
    Post(Acknowledgement());
    LetPass(6.0);
    EXPECT_EQ(ExpiriesLogged(), 0U);
}

TEST_F(SystemMonitorTest, watches_again_after_an_expiry) {
    configuration.Set("AckTimeout", "1000");
    Start();
    Post(Measured(0.2));
    WaitForLine(NoAcknowledgement);
    Post(Measured(0.2));
    WaitForLine(NoAcknowledgement, 2);
}

TEST_F(SystemMonitorTest, logs_a_timer_that_cannot_start_after_the_request) {
    Start();
    {
        const ImpossibleStack stack;
        Post(Measured(0.9));
        Barrier();
    }
    EXPECT_EQ(Errors(), (Texts{"SystemMonitor::ACK timer could not be started!"}));
    EXPECT_EQ(indicator->Get<RemoteIndicatorControlMessage>().GetWaterStatus(), 3);
}

TEST_F(SystemMonitorTest, neither_asks_nor_waits_where_the_request_can_not_be_made) {
    configuration.Set("AckTimeout", "10");
    Start();
    FailingAllocation::FailSize(sizeof(RemoteIndicatorControlMessage));
    Post(Measured(0.9));
    LetPass(2.0);
    EXPECT_EQ(ExpiriesLogged(), 0U);
    EXPECT_EQ(indicator->Count(), 0U);
    EXPECT_EQ(StatusFor(0.9), 3);
}

TEST_F(SystemMonitorTest, ends_at_once_while_acknowledgements_are_awaited) {
    configuration.Set("AckTimeout", "86400000");
    Start();
    Post(Measured(0.9));
    Post(Measured(0.9));
    Barrier();
    Stop();
    EXPECT_EQ(Errors(), Texts{});
}

namespace {

// The pass counter belongs to the process, so each test ends with a closed pass.
class LEDTests : public SystemMonitorTest {
protected:
    LEDTests() { Start(); }

    ~LEDTests() override {
        MoveTo(6 - m_position);
        Answer({true});
    }

    // Time-outs of the wait, of which the system has none.
    void MoveTo(int timeOuts) {
        Barrier();
        for (int count = 0; count < timeOuts; ++count) {
            EXPECT_TRUE(Get().ProcessTimeOut());
            m_position = m_position == 6 ? 1 : m_position + 1;
        }
    }

    void RestartTests() {
        Restart();
        m_position = 0;
    }

    void Answer(const std::vector<bool>& verdicts) {
        for (const bool good : verdicts) {
            Post(Verdict(good));
        }
        Barrier();
    }

    // A pass with these verdicts for the tests from the present one on.
    void Pass(const std::vector<bool>& verdicts) {
        for (std::size_t test = 0; test < verdicts.size(); ++test) {
            MoveTo(test == 0 ? 0 : 1);
            Answer({verdicts[test]});
        }
    }

    std::vector<bool> Results() {
        std::vector<bool> results;
        for (std::size_t test = 0; test < static_cast<std::size_t>(SystemMonitor::TestCount); ++test) {
            results.push_back(Get().GetTestResult(test));
        }
        return results;
    }

    std::vector<std::int32_t> Requested(std::size_t count) {
        std::vector<std::int32_t> ids;
        for (std::size_t request = 0; request < count; ++request) {
            const auto& message = indicator->Get<RemoteIndicatorTestMessage>(request);
            EXPECT_EQ(message.GetDataType(), REMOTE_INDICATOR_TEST_MESSAGE);
            EXPECT_EQ(message.GetSubType(), 0);
            EXPECT_EQ(message.GetSource(), &Get());
            ids.push_back(message.GetTestId());
        }
        EXPECT_EQ(indicator->Count(), count);
        return ids;
    }

private:
    int m_position = 0;
};

using Verdicts = std::vector<bool>;

}  // namespace

TEST_F(LEDTests, are_all_bad_after_the_start) { EXPECT_EQ(Results(), Verdicts(7, false)); }

TEST_F(LEDTests, are_not_driven_by_a_time_out) { EXPECT_EQ(Get().GetTimeOut(), -1); }

TEST_F(LEDTests, advance_with_each_time_out_and_test_the_whole_once) {
    MoveTo(9);
    EXPECT_EQ(Requested(9), (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 1, 2, 3}));
    const Texts lines = LinesOf(DEBUG_LOG_LEVEL);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Processing TimeOut for - SystemMonitor"), 9);
}

TEST_F(LEDTests, step_on_though_the_request_can_not_be_made) {
    Barrier();
    FailingAllocation::FailSize(sizeof(RemoteIndicatorTestMessage));
    MoveTo(2);
    EXPECT_EQ(Requested(1), (std::vector<std::int32_t>{2}));
}

TEST_F(LEDTests, log_each_failure_and_the_whole_at_the_end) {
    Pass(Verdicts(7, false));
    EXPECT_EQ(Errors(),
              (Texts{NotConnected, "Blue analyzer LED is non-functional!", "Amber analyzer LED is non-functional!",
                     "Red analyzer LED is non-functional!", "Blue water LED is non-functional!",
                     "Amber water LED is non-functional!", "Red water LED is non-functional!", NotConnected}));
    EXPECT_EQ(Results(), Verdicts(7, false));
}

TEST_F(LEDTests, need_three_good_results_of_seven) {
    Pass({false, true, false, true, false, true, false});
    EXPECT_EQ(Errors(), (Texts{NotConnected, "Amber analyzer LED is non-functional!",
                               "Blue water LED is non-functional!", "Red water LED is non-functional!"}));
    EXPECT_EQ(Results(), (Verdicts{true, true, false, true, false, true, false}));
}

TEST_F(LEDTests, fail_the_whole_with_two_good_results) {
    Pass({true, true, false, false, false, false, false});
    EXPECT_EQ(Errors().back(), NotConnected);
    EXPECT_EQ(Results(), (Verdicts{false, true, false, false, false, false, false}));
}

TEST_F(LEDTests, count_afresh_in_each_pass) {
    Pass(Verdicts(7, true));
    MoveTo(1);
    Pass({true, true, false, false, false, false});
    EXPECT_EQ(Results(), (Verdicts{false, true, true, false, false, false, false}));
}

TEST_F(LEDTests, close_a_pass_only_at_its_last_test) {
    MoveTo(5);
    Answer(Verdicts(20, true));
    EXPECT_EQ(Results(), (Verdicts{false, false, false, false, false, true, false}));
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(LEDTests, count_the_good_ones_in_eight_bits) {
    Answer(Verdicts(256, true));
    MoveTo(6);
    Answer({true});
    EXPECT_EQ(Errors(), (Texts{NotConnected}));
}

TEST_F(LEDTests, count_on_over_a_reset) {
    Answer(Verdicts(2, true));
    RestartTests();
    MoveTo(6);
    Answer({true});
    EXPECT_EQ(Errors(), Texts{});
    EXPECT_TRUE(Results()[0]);
}

TEST_F(LEDTests, hear_responses_only) {
    MoveTo(6);
    Post(Verdict(false, REQUEST_SUB_TYPE));
    Post(Verdict(false, ACKNOWLEDGE_SUB_TYPE));
    Barrier();
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(LEDTests, start_again_at_the_first_after_Init) {
    MoveTo(3);
    RestartTests();
    MoveTo(1);
    EXPECT_EQ(Requested(1), (std::vector<std::int32_t>{1}));
}

TEST_F(LEDTests, take_any_verdict_but_0_for_good) {
    auto message = std::make_unique<RemoteIndicatorTestMessage>();
    message->SetSubType(RESPONSE_SUB_TYPE);
    message->SetVerdict(255);
    Post(std::move(message));
    Barrier();
    EXPECT_TRUE(Results()[0]);
}

namespace {

class PeriodicTest : public LEDTests {
protected:
    PeriodicTest() {
        Barrier();
        Get().SetTestMode(5);
    }

    void AnswerHardwareTest(bool good, std::int32_t subType = RESPONSE_SUB_TYPE) {
        auto message = std::make_unique<PeriodicHardwareTestMessage>();
        message->SetSubType(subType);
        message->SetVerdict(good ? 1 : 0);
        Post(std::move(message));
        Barrier();
    }
};

}  // namespace

TEST_F(PeriodicTest, goes_on_with_the_indicator_where_the_board_is_good) {
    AnswerHardwareTest(true);
    EXPECT_EQ(Requested(1), (std::vector<std::int32_t>{0}));
    EXPECT_EQ(Get().GetTestMode(), 5);
}

TEST_F(PeriodicTest, ends_where_the_board_is_bad) {
    AnswerHardwareTest(false);
    EXPECT_EQ(Get().GetTestMode(), 0);
    EXPECT_EQ(Requested(0), std::vector<std::int32_t>{});
}

TEST_F(PeriodicTest, hears_responses_only) {
    AnswerHardwareTest(false, REQUEST_SUB_TYPE);
    AnswerHardwareTest(false, ACKNOWLEDGE_SUB_TYPE);
    EXPECT_EQ(Get().GetTestMode(), 5);
}

TEST_F(PeriodicTest, stores_the_verdict_without_counting_it) {
    Answer({false});
    EXPECT_EQ(Get().GetTestMode(), 0);
    EXPECT_EQ(Errors(), Texts{});
    Get().SetTestMode(5);
    Answer({true});
    EXPECT_TRUE(Results()[0]);
    // That good answer was not counted: two more are too few.
    Answer({true});
    MoveTo(6);
    Answer({true});
    EXPECT_EQ(Errors(), (Texts{NotConnected}));
}

TEST_F(LEDTests, do_not_follow_a_test_of_the_board_that_nobody_leads) {
    auto message = std::make_unique<PeriodicHardwareTestMessage>();
    message->SetSubType(RESPONSE_SUB_TYPE);
    message->SetVerdict(1);
    Post(std::move(message));
    Barrier();
    EXPECT_EQ(Get().GetTestMode(), 0);
    EXPECT_EQ(Requested(0), std::vector<std::int32_t>{});
}

TEST_F(LEDTests, end_the_mode_with_each_response) {
    Get().SetTestMode(3);
    Answer({true});
    EXPECT_EQ(Get().GetTestMode(), 0);
}
