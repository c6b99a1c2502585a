#include <gtest/gtest.h>

#include <random>

#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Tests/Frameworks/Messaging/RecordingController.h"
#include "Tests/Support/RandomSeed.h"

namespace {

using Notes = std::vector<std::string>;

class Routing : public RouterFixture {};

std::unique_ptr<CommandMessage> Command(CommandType type, ThreadControl* source, ThreadControl* destination) {
    auto message = std::make_unique<CommandMessage>(type);
    message->SetSource(source);
    message->SetDestination(destination);
    return message;
}

}  // namespace

TEST_F(Routing, a_command_reaches_every_subscriber_in_order_of_registration) {
    RecordingController& one = Add("One");
    RecordingController& two = Add("Two");
    for (RecordingController* thread : {&one, &two}) {
        thread->CreateThread();
        thread->WaitForNotes(1);
        EXPECT_FALSE(thread->RegisterForCommand(PRIME_SYSTEM));
    }
    one.SendCommand(PRIME_SYSTEM);
    EXPECT_EQ(one.WaitForNotes(2), (Notes{"init", "PRIME_SYSTEM"}));
    EXPECT_EQ(two.WaitForNotes(2), (Notes{"init", "PRIME_SYSTEM"}));
}

TEST_F(Routing, registering_twice_is_refused_and_delivers_once) {
    RecordingController& one = Add("One");
    EXPECT_TRUE(router.RegisterCommand(&one, PRIME_SYSTEM));
    EXPECT_FALSE(router.RegisterCommand(&one, PRIME_SYSTEM));
    EXPECT_TRUE(router.RegisterDataMessage(&one, MEASUREMENT_STATUS_MESSAGE));
    EXPECT_FALSE(router.RegisterDataMessage(&one, MEASUREMENT_STATUS_MESSAGE));
    EXPECT_FALSE(one.RegisterForDataMessage(MEASUREMENT_STATUS_MESSAGE));
    one.CreateThread();
    one.SendCommand(PRIME_SYSTEM);
    one.SendCommand(COLLECT_MEASUREMENT);
    one.ReceiveMessage(Command(MOVE_TO_IDLE, &one, &one));
    router.RegisterCommand(&one, RESET_SYSTEM);
    one.SendCommand(RESET_SYSTEM);
    one.WaitForNote("RESET_SYSTEM");
    const Notes notes = one.Notes();
    EXPECT_EQ(std::count(notes.begin(), notes.end(), "PRIME_SYSTEM"), 1);
    EXPECT_EQ(std::count(notes.begin(), notes.end(), "COLLECT_MEASUREMENT"), 0);
}

TEST_F(Routing, a_message_without_subscribers_is_dropped_and_the_router_goes_on) {
    RecordingController& one = Add("One");
    one.CreateThread();
    one.WaitForNotes(1);
    router.RegisterCommand(&one, PRIME_SYSTEM);
    one.SendCommand(COLLECT_MEASUREMENT);
    EXPECT_TRUE(MessageController::SendStatusMessage("no subscriber"));
    one.SendCommand(PRIME_SYSTEM);
    EXPECT_EQ(one.WaitForNotes(2), (Notes{"init", "PRIME_SYSTEM"}));
}

TEST_F(Routing, the_routers_own_clone_changes_its_state_and_goes_no_further) {
    RecordingController& one = Add("One");
    one.CreateThread();
    router.RegisterCommand(&router, MOVE_TO_RUNNING);
    router.RegisterCommand(&one, MOVE_TO_RUNNING);
    router.RegisterCommand(&one, PRIME_SYSTEM);
    one.SendCommand(MOVE_TO_RUNNING);
    one.WaitForNote("MOVE_TO_RUNNING");
    // The router's own clone is in its queue by now, ahead of this.
    one.SendCommand(PRIME_SYSTEM);
    EXPECT_EQ(one.WaitForNotes(3), (Notes{"init", "MOVE_TO_RUNNING", "PRIME_SYSTEM"}));
    EXPECT_EQ(router.GetState(), RUNNING_STATE);
}

TEST_F(Routing, each_move_command_sets_the_routers_state) {
    RecordingController& one = Add("One");
    one.CreateThread();
    for (const CommandType command : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        router.RegisterCommand(&router, command);
        router.RegisterCommand(&one, command);
    }
    router.RegisterCommand(&one, PRIME_SYSTEM);
    const std::pair<CommandType, ThreadState> rows[] = {{MOVE_TO_RUNNING, RUNNING_STATE},
                                                        {MOVE_TO_SHUTDOWN, SHUTDOWN_STATE},
                                                        {MOVE_TO_TEST, TEST_STATE},
                                                        {MOVE_TO_IDLE, IDLE_STATE}};
    std::size_t notes = 1;
    for (const auto& [command, state] : rows) {
        one.SendCommand(command);
        one.WaitForNotes(++notes);
        // The router's own clone is in its queue by now, ahead of this.
        one.SendCommand(PRIME_SYSTEM);
        one.WaitForNotes(++notes);
        EXPECT_EQ(router.GetState(), state);
    }
}

TEST(Router, waits_without_limit_after_each_move_command) {
    const QuietLog quiet;
    MessagingControl router;
    router.Kill();
    pthread_join(router.GetThreadId(), nullptr);
    for (const CommandType command : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        const std::unique_ptr<MessageBase> message = SentTwice(std::make_unique<CommandMessage>(command));
        router.SetTimeOut(7);
        EXPECT_TRUE(router.ProcessCommandMessage(static_cast<CommandMessage*>(message.get())));
        EXPECT_EQ(router.GetTimeOut(), -1) << CommandNames[command].Text();
    }
    const std::unique_ptr<MessageBase> other = SentTwice(std::make_unique<CommandMessage>(PRIME_SYSTEM));
    router.SetTimeOut(7);
    EXPECT_TRUE(router.ProcessCommandMessage(static_cast<CommandMessage*>(other.get())));
    EXPECT_EQ(router.GetTimeOut(), 7);
}

TEST_F(Routing, ignores_a_data_message_that_was_sent_twice) {
    RecordingController& one = Add("One", MEASUREMENT_STATUS_MESSAGE);
    one.CreateThread();
    one.WaitForNotes(1);
    router.RegisterCommand(&one, PRIME_SYSTEM);
    // A subscribed router gets its own fan-out back with a count of 2.
    router.RegisterDataMessage(&router, MEASUREMENT_STATUS_MESSAGE);
    router.RegisterCommand(&one, MOVE_TO_IDLE);
    auto status = std::make_unique<MeasurementStatusMessage>();
    status->SetSource(&one);
    status->SetDestination(&router);
    MessageBase::Send(std::move(status));
    one.SendCommand(PRIME_SYSTEM);
    one.WaitForNote("PRIME_SYSTEM");
    EXPECT_EQ(one.Notes(), (Notes{"init", "MEASUREMENT_STATUS_MESSAGE", "PRIME_SYSTEM"}));
}

TEST_F(Routing, keeps_log_lines_for_the_first_subscriber_and_loses_the_line_that_releases_them) {
    RecordingController& sender = Add("Sender");
    sender.Log("first", NOTICE_LOG_LEVEL);
    sender.Log("second", NOTICE_LOG_LEVEL);
    // The router forwards a command only after it has stored both.
    sender.CreateThread();
    router.RegisterCommand(&sender, PRIME_SYSTEM);
    sender.SendCommand(PRIME_SYSTEM);
    sender.WaitForNote("PRIME_SYSTEM");
    RecordingController& logger = Add("Logger", LOGGING_DATA_MESSAGE);
    logger.CreateThread();
    logger.WaitForNotes(1);
    sender.Log("lost", NOTICE_LOG_LEVEL);
    sender.Log("third", NOTICE_LOG_LEVEL);
    EXPECT_EQ(logger.WaitForNotes(4), (Notes{"init", "first", "second", "third"}));
}

TEST_F(Routing, waiting_log_lines_reach_every_subscriber) {
    RecordingController& sender = Add("Sender");
    sender.Log("first", NOTICE_LOG_LEVEL);
    RecordingController& one = Add("One");
    RecordingController& two = Add("Two");
    one.CreateThread();
    two.CreateThread();
    router.RegisterCommand(&one, PRIME_SYSTEM);
    one.SendCommand(PRIME_SYSTEM);
    one.WaitForNote("PRIME_SYSTEM");
    router.RegisterDataMessage(&one, LOGGING_DATA_MESSAGE);
    router.RegisterDataMessage(&two, LOGGING_DATA_MESSAGE);
    sender.Log("lost", NOTICE_LOG_LEVEL);
    one.WaitForNote("first");
    two.WaitForNote("first");
}

TEST_F(Routing, a_line_above_the_log_level_makes_no_message) {
    RecordingController& logger = AddLogger();
    logger.Log("too fine", DEBUG_LOG_LEVEL);
    logger.Log("no level counts as the finest", NO_LOG_LEVEL);
    MessageController::LogMessage("too fine", DEBUG_LOG_LEVEL, SYSTEM_CONTROL);
    logger.Log("passes", INFORMATIONAL_LOG_LEVEL);
    EXPECT_EQ(logger.WaitForNotes(1), (Notes{"passes"}));
}

TEST_F(Routing, every_message_leaves_one_line_of_trace_at_its_receiver) {
    RecordingController& logger = AddLogger();
    MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
    RecordingController& one = Add("One");
    one.CreateThread();
    one.WaitForNotes(1);
    one.ReceiveMessage(Command(PRIME_SYSTEM, &logger, &one));
    logger.WaitForNote("Command Message (PRIME_SYSTEM) : From - Logger : To - One");
    auto status = std::make_unique<MeasurementStatusMessage>();
    status->SetSource(&one);
    status->SetDestination(&logger);
    MessageBase::Send(std::move(status));
    logger.WaitForNote("Data Message (MEASUREMENT_STATUS_MESSAGE) : From - One : To - Logger");
    one.ReceiveMessage(Command(MOVE_TO_IDLE, &logger, &one));
    logger.WaitForNote("Command Message (MOVE_TO_IDLE) : From - Logger : To - One");
    one.SendCommand(COLLECT_MEASUREMENT);
    logger.WaitForNote("Sending Command - COLLECT_MEASUREMENT");
    one.SetState(IDLE_STATE);
    logger.WaitForNote("Changing to IDLE_STATE State for - One");
    one.Kill();
    logger.WaitForNote("Killing Thread for - One");
}

TEST_F(Routing, the_routers_time_out_leaves_a_line) {
    RecordingController& logger = AddLogger();
    MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
    EXPECT_TRUE(router.ProcessTimeOut());
    logger.WaitForNote("Processing TimeOut for - MessagingControl");
}

TEST_F(Routing, LogMessage_without_an_origin_says_so_in_the_routers_name) {
    RecordingController& logger = AddLogger();
    router.RegisterCommand(&router, PRIME_SYSTEM);
    MessageController::LogMessage("never seen", ERROR_LOG_LEVEL, NO_CONTROLLER);
    EXPECT_EQ(logger.WaitForNotes(1), (Notes{"Invalid Controller Type"}));
}

TEST_F(Routing, SendMessage_refuses_a_null_message_and_no_origin) {
    RecordingController& logger = AddLogger();
    router.RegisterCommand(&router, PRIME_SYSTEM);
    router.RegisterCommand(&logger, PRIME_SYSTEM);
    EXPECT_FALSE(MessageController::SendMessage(nullptr, MESSAGING_CONTROL));
    EXPECT_FALSE(MessageController::SendMessage(std::make_unique<CommandMessage>(PRIME_SYSTEM), NO_CONTROLLER));
    EXPECT_EQ(logger.WaitForNotes(2), (Notes{"Attempt to send NULL message", "Invalid Controller Type"}));
}

TEST_F(Routing, the_layers_below_report_through_the_router) {
    RecordingController& logger = AddLogger();
    router.RegisterCommand(&router, PRIME_SYSTEM);
    ReportError("from below", MESSAGING_CONTROL);
    EXPECT_EQ(logger.WaitForNotes(1), (Notes{"from below"}));
}

TEST_F(Routing, a_status_message_goes_out_in_the_name_of_the_measurement_engine) {
    RecordingController& engine = Add("MeasurementEngine", MEASUREMENT_STATUS_MESSAGE);
    engine.CreateThread();
    engine.WaitForNotes(1);
    router.RegisterCommand(&engine, PRIME_SYSTEM);
    EXPECT_TRUE(MessageController::SendStatusMessage("Executing"));
    EXPECT_EQ(engine.WaitForNotes(2), (Notes{"init", "MEASUREMENT_STATUS_MESSAGE"}));
}

TEST_F(Routing, a_message_to_a_controller_that_never_registered_is_refused) {
    auto message = std::make_unique<CommandMessage>(PRIME_SYSTEM);
    message->SetDestination(TEST_INTERFACE);
    message->SetSource(TEST_INTERFACE);
    EXPECT_EQ(message->GetDestination(), nullptr);
    EXPECT_FALSE(MessageBase::Send(std::move(message)));
}

TEST_F(Routing, a_burst_is_delivered_whole_and_in_order) {
    RecordingController& one = Add("One");
    router.RegisterCommand(&one, PRIME_SYSTEM);
    router.RegisterCommand(&one, COLLECT_MEASUREMENT);
    RecordingController& sender = Add("Sender");
    const unsigned seed = RandomSeed();
    std::mt19937 random(seed);
    Notes expected{"init"};
    for (int count = 0; count < 2000; ++count) {
        const CommandType command = random() % 2 == 0 ? PRIME_SYSTEM : COLLECT_MEASUREMENT;
        sender.SendCommand(command);
        expected.push_back(CommandNames[command].Text());
    }
    one.CreateThread();
    EXPECT_EQ(one.WaitForNotes(expected.size()), expected) << "seed " << seed;
}

TEST(RoutingWithout, a_router_Log_does_nothing_and_registration_fails) {
    RecordingController one("One");
    one.Log("lost", ERROR_LOG_LEVEL);
    one.SendCommand(PRIME_SYSTEM);
    EXPECT_FALSE(one.RegisterForCommand(PRIME_SYSTEM));
    EXPECT_FALSE(one.RegisterForDataMessage(LOGGING_DATA_MESSAGE));
    EXPECT_FALSE(MessageBase::SetMessagingControl(nullptr));
}
