#include <gtest/gtest.h>

#include "Frameworks/Messaging/CommandMessage.h"
#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Tests/Frameworks/Messaging/RecordingController.h"

namespace {

class MessageRouting : public RouterFixture {};

// Counts the existing objects.
class CountedMessage : public CommandMessage {
public:
    explicit CountedMessage(int& count) : CommandMessage(PRIME_SYSTEM), m_count(count) { ++m_count; }
    ~CountedMessage() override { --m_count; }

private:
    int& m_count;
};

}  // namespace

TEST(Message, the_name_tables_are_in_the_order_of_their_numbers) {
    EXPECT_EQ(ControllerNames[DEVICE_MONITOR], "DeviceMonitor");
    EXPECT_EQ(ControllerNames[LOGGING_CONTROL], "LoggingControl");
    EXPECT_EQ(ControllerNames[2], "MeasurementEngine");
    EXPECT_EQ(ControllerNames[3], "MessagingControl");
    EXPECT_EQ(ControllerNames[4], "RemoteIndicatorControl");
    EXPECT_EQ(ControllerNames[5], "SystemControl");
    EXPECT_EQ(ControllerNames[6], "SystemMonitor");
    EXPECT_EQ(ControllerNames[7], "TestInterface");
    EXPECT_EQ(ControllerNames[8], "UserInterfaceDataControl");
    const char* const levels[] = {"EMERGENCY_LOG_LEVEL",     "ALERT_LOG_LEVEL",   "CRITICAL_LOG_LEVEL",
                                  "ERROR_LOG_LEVEL",         "WARNING_LOG_LEVEL", "NOTICE_LOG_LEVEL",
                                  "INFORMATIONAL_LOG_LEVEL", "DEBUG_LOG_LEVEL",   "RUMOR_LOG_LEVEL"};
    for (int level = 0; level < LogLevelCount; ++level) {
        EXPECT_EQ(LogLevelNames[level], levels[level]);
    }
    const char* const states[] = {"INITIALIZING_STATE", "IDLE_STATE", "RUNNING_STATE",
                                  "SHUTDOWN_STATE",     "TEST_STATE", "RESETTING_SYSTEM_STATE",
                                  "POST_EXITING_STATE"};
    for (int state = 0; state < ThreadStateCount; ++state) {
        EXPECT_EQ(ThreadStateNames[state], states[state]);
    }
    const char* const commands[] = {"MOVE_TO_IDLE", "MOVE_TO_RUNNING", "MOVE_TO_SHUTDOWN", "MOVE_TO_TEST",
                                    "RESET_SYSTEM", "KILLING_SYSTEM",  "PRIME_SYSTEM",     "COLLECT_MEASUREMENT"};
    for (int command = 0; command < CommandCount; ++command) {
        EXPECT_EQ(CommandNames[command], commands[command]);
    }
    const char* const types[] = {"ADC_STATUS_MESSAGE",
                                 "DEVICE_ERROR_DATA_MESSAGE",
                                 "LOGGING_DATA_MESSAGE",
                                 "MEASUREMENT_DATA_MESSAGE",
                                 "MEASUREMENT_STEP_DATA_MESSAGE",
                                 "MEASUREMENT_STATUS_MESSAGE",
                                 "TIMER_COMPLETION_DATA_MESSAGE",
                                 "REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE",
                                 "REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE",
                                 "SYSTEM_ERROR_DATA_MESSAGE",
                                 "TEST_COMMAND_DATA_MESSAGE",
                                 "WATCHDOG_ERROR_DATA_MESSAGE",
                                 "ACK_TIMER_EXPIRED_DATA_MESSAGE",
                                 "TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE",
                                 "TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE",
                                 "TEST_PWM_DATA_MESSAGE",
                                 "REMOTE_INDICATOR_TEST_MESSAGE",
                                 "PERIODIC_HARDWARE_TEST_DATA_MESSAGE",
                                 "REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE",
                                 "TRANSFER_DATA_TO_SD_CARD_MESSAGE",
                                 "USER_INTERFACE_DATA_MESSAGE",
                                 "GUI_RESPONSE_DATA_MESSAGE"};
    for (int type = 0; type < DataMessageCount; ++type) {
        EXPECT_EQ(DataMessageNames[type], types[type]);
    }
}

TEST(Message, a_new_command_has_no_type_no_ends_and_was_never_sent) {
    const CommandMessage message;
    EXPECT_TRUE(message.IsCommand());
    EXPECT_EQ(message.GetCommandType(), -1);
    EXPECT_EQ(message.GetSource(), nullptr);
    EXPECT_EQ(message.GetDestination(), nullptr);
    EXPECT_EQ(message.GetSendCount(), 0);
    EXPECT_TRUE(message.GetSourceName().IsEmpty());
    EXPECT_TRUE(message.GetDestinationName().IsEmpty());
}

TEST(Message, a_data_message_starts_as_a_request_of_its_own_type) {
    const LogInfoMessage message;
    EXPECT_FALSE(message.IsCommand());
    EXPECT_EQ(message.GetDataType(), LOGGING_DATA_MESSAGE);
    EXPECT_EQ(message.GetSubType(), 0);
}

TEST(Message, without_source_or_destination_is_refused_and_freed) {
    int count = 0;
    RecordingController thread("One");
    auto noSource = std::make_unique<CountedMessage>(count);
    noSource->SetDestination(&thread);
    EXPECT_FALSE(MessageBase::Send(std::move(noSource)));
    auto noDestination = std::make_unique<CountedMessage>(count);
    noDestination->SetSource(&thread);
    EXPECT_FALSE(MessageBase::Send(std::move(noDestination)));
    EXPECT_EQ(count, 0);
}

TEST(Message, a_destination_by_number_stays_null_without_a_router) {
    CommandMessage message(PRIME_SYSTEM);
    message.SetDestination(TEST_INTERFACE);
    message.SetSource(SYSTEM_MONITOR);
    EXPECT_EQ(message.GetDestination(), nullptr);
    EXPECT_EQ(message.GetDestinationName(), "TestInterface");
    EXPECT_EQ(message.GetSource(), nullptr);
    EXPECT_EQ(message.GetSourceName(), "SystemMonitor");
}

TEST(Message, a_null_pointer_keeps_the_name_set_before) {
    CommandMessage message;
    message.SetDestination(TEST_INTERFACE);
    message.SetDestination(static_cast<ThreadControl*>(nullptr));
    EXPECT_EQ(message.GetDestinationName(), "TestInterface");
}

TEST_F(MessageRouting, a_source_outside_the_table_is_the_router) {
    router.RegisterForCommand(MOVE_TO_IDLE);
    for (const int number : {9, -1}) {
        CommandMessage message;
        message.SetSource(static_cast<ControllerType>(number));
        EXPECT_EQ(message.GetSource(), &router);
        EXPECT_EQ(message.GetSourceName(), "MessagingControl");
    }
}

TEST_F(MessageRouting, a_clone_keeps_command_time_count_and_ends_but_no_names) {
    RecordingController& thread = Add("One");
    auto message = std::make_unique<CommandMessage>(PRIME_SYSTEM);
    message->SetSource(&thread);
    message->SetDestination(&thread);
    const std::unique_ptr<MessageBase> clone = message->Clone();
    EXPECT_TRUE(clone->IsCommand());
    EXPECT_EQ(static_cast<CommandMessage&>(*clone).GetCommandType(), PRIME_SYSTEM);
    EXPECT_EQ(clone->GetSendCount(), message->GetSendCount());
    EXPECT_TRUE(clone->GetTimeStamp() == message->GetTimeStamp());
    EXPECT_EQ(clone->GetSource(), &thread);
    EXPECT_EQ(clone->GetDestination(), &thread);
    EXPECT_TRUE(clone->GetSourceName().IsEmpty());
    EXPECT_TRUE(clone->GetDestinationName().IsEmpty());
}

TEST(Message, a_clone_keeps_the_send_count) {
    EXPECT_EQ(SentTwice(std::make_unique<CommandMessage>(PRIME_SYSTEM))->Clone()->GetSendCount(), 2);
    EXPECT_EQ(SentTwice(std::make_unique<LogInfoMessage>())->Clone()->GetSendCount(), 2);
}

TEST(Message, is_refused_without_a_router_that_knows_its_source) {
    int count = 0;
    RecordingController thread("One");
    auto message = std::make_unique<CountedMessage>(count);
    message->SetDestination(&thread);
    message->SetSource(SYSTEM_CONTROL);
    EXPECT_FALSE(MessageBase::Send(std::move(message)));
    EXPECT_EQ(count, 0);
    thread.CreateThread();
    EXPECT_EQ(thread.WaitForNotes(1), std::vector<std::string>{"init"});
}

TEST(Message, a_log_line_is_its_time_two_colons_and_the_text) {
    LogInfoMessage message;
    message.SetLogInfo("a text", WARNING_LOG_LEVEL);
    message.SetSubType(2);
    const std::unique_ptr<MessageBase> clone = message.Clone();
    const auto& copy = static_cast<LogInfoMessage&>(*clone);
    EXPECT_EQ(copy.GetSubType(), 2);
    EXPECT_EQ(copy.GetDataType(), LOGGING_DATA_MESSAGE);
    EXPECT_EQ(copy.GetLogInfo().GetLogLevel(), WARNING_LOG_LEVEL);
    EXPECT_EQ(copy.GetLogInfo().GetLine(), message.GetLogInfo().GetTime().GetTimeString(9) + " :: a text");
}

TEST(Message, a_status_line_is_its_time_two_colons_and_the_text) {
    MeasurementStatusInfo status;
    status.SetText("a status");
    MeasurementStatusMessage message;
    message.SetStatusInfo(status);
    const std::unique_ptr<MessageBase> clone = message.Clone();
    EXPECT_EQ(static_cast<MeasurementStatusMessage&>(*clone).GetStatusInfo().GetLine(),
              status.GetTime().GetTimeString(9) + " :: a status");
}

TEST(MessageController, sends_nothing_without_a_router_and_says_sent) {
    int count = 0;
    EXPECT_TRUE(MessageController::SendMessage(std::make_unique<CountedMessage>(count), SYSTEM_CONTROL));
    EXPECT_EQ(count, 0);
}
