#include <algorithm>
#include <array>
#include <memory>
#include <set>

#include "Frameworks/Messaging/MessageController.h"
#include "System/Messages/AckTimerExpiredMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "System/Messages/TimerCompleteMessage.h"
#include "System/SystemMonitor/RemoteIndicatorAckTimer.h"
#include "System/TestInterface/TestInterfaceTimer.h"
#include "Tests/Support/CapturingController.h"

namespace {

constexpr std::uint32_t OneHour = 3600000;

class DataMessageRouting : public RoutedTest {};
class TestInterfaceTimers : public RoutedTest {};
class RemoteIndicatorAckTimers : public RoutedTest {};

}  // namespace

TEST_F(DataMessageRouting, gives_each_subscriber_its_own_results) {
    CapturingController engine(ControllerNames[MEASUREMENT_ENGINE]);
    std::array<std::unique_ptr<CapturingController>, 5> subscribers;
    const ControllerType names[] = {SYSTEM_CONTROL, LOGGING_CONTROL, SYSTEM_MONITOR, TEST_INTERFACE,
                                    USER_INTERFACE_DATA_CONTROL};
    for (std::size_t index = 0; index < subscribers.size(); ++index) {
        subscribers[index] =
            std::make_unique<CapturingController>(ControllerNames[names[index]], std::vector{MEASUREMENT_DATA_MESSAGE});
    }
    MeasurementResults results;
    results.SetChlorine(0.5);
    auto message = std::make_unique<MeasurementMessage>();
    message->SetMeasurementResults(results);
    ASSERT_TRUE(MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE));
    for (const auto& subscriber : subscribers) {
        const auto& received = subscriber->Get<MeasurementMessage>();
        EXPECT_EQ(received.GetMeasurementResults().GetChlorine(), 0.5);
        EXPECT_EQ(received.GetSource(), &engine);
        EXPECT_EQ(received.GetDestination(), subscriber.get());
    }
}

TEST_F(DataMessageRouting, returns_an_acknowledgement_to_its_sender_too) {
    CapturingController indicator(ControllerNames[REMOTE_INDICATOR_CONTROL],
                                  {REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE});
    CapturingController monitor(ControllerNames[SYSTEM_MONITOR], {REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE});
    auto message = std::make_unique<RemoteIndicatorControlMessage>();
    message->SetSubType(ACKNOWLEDGE_SUB_TYPE);
    ASSERT_TRUE(MessageController::SendMessage(std::move(message), REMOTE_INDICATOR_CONTROL));
    EXPECT_EQ(indicator.Get<RemoteIndicatorControlMessage>().GetSubType(), 2);
    EXPECT_EQ(monitor.Get<RemoteIndicatorControlMessage>().GetSubType(), 2);
}

TEST_F(DataMessageRouting, returns_a_test_request_to_the_test_interface) {
    CapturingController test(ControllerNames[TEST_INTERFACE], {TEST_PWM_DATA_MESSAGE});
    auto message = std::make_unique<TestPWMMessage>();
    message->SetValue("on");
    ASSERT_TRUE(MessageController::SendMessage(std::move(message), TEST_INTERFACE));
    EXPECT_EQ(test.Get<TestPWMMessage>().GetSubType(), 0);
    EXPECT_EQ(test.Get<TestPWMMessage>().GetValue(), "on");
}

TEST(TestInterfaceTimer, is_named_after_its_controller) {
    EXPECT_EQ(TestInterfaceTimer().GetThreadName(), "TestInterface_TestInterfaceTimer");
}

TEST(RemoteIndicatorAckTimer, is_named_after_its_controller) {
    EXPECT_EQ(RemoteIndicatorAckTimer().GetThreadName(), "SystemMonitor_RemoteIndicatorAckTimer");
}

TEST_F(TestInterfaceTimers, post_duration_and_next_command_to_the_test_interface) {
    CapturingController owner(ControllerNames[TEST_INTERFACE]);
    TestInterfaceTimer timer;
    timer.SetNextCommand(COLLECT_MEASUREMENT);
    timer.SetDuration(7);
    ASSERT_TRUE(timer.Start());
    const auto& message = owner.Get<TimerCompleteMessage>();
    EXPECT_EQ(message.GetDataType(), TIMER_COMPLETION_DATA_MESSAGE);
    EXPECT_EQ(message.GetDuration(), 7U);
    EXPECT_EQ(message.GetDurationValue().GetSeconds(), 0);
    EXPECT_EQ(message.GetDurationValue().GetNanoSeconds(), 7000000);
    EXPECT_EQ(message.GetNextCommand(), COLLECT_MEASUREMENT);
    EXPECT_EQ(message.GetSource(), &owner);
    EXPECT_EQ(message.GetDestination(), &owner);
    EXPECT_EQ(message.GetSendCount(), 1) << "past the router";
}

TEST_F(TestInterfaceTimers, start_again_with_the_values_of_their_message) {
    CapturingController owner(ControllerNames[TEST_INTERFACE]);
    TestInterfaceTimer timer;
    timer.SetNextCommand(PRIME_SYSTEM);
    timer.SetDuration(3);
    ASSERT_TRUE(timer.Start());
    const auto& first = owner.Get<TimerCompleteMessage>();
    timer.SetNextCommand(first.GetNextCommand());
    timer.SetDuration(first.GetDuration());
    ASSERT_TRUE(timer.Start());
    EXPECT_EQ(owner.Get<TimerCompleteMessage>(1).GetNextCommand(), PRIME_SYSTEM);
}

TEST_F(RemoteIndicatorAckTimers, post_a_word_of_0_to_the_system_monitor) {
    CapturingController owner(ControllerNames[SYSTEM_MONITOR]);
    RemoteIndicatorAckTimer timer;
    ASSERT_TRUE(timer.Start());
    const auto& message = owner.Get<AckTimerExpiredMessage>();
    EXPECT_EQ(message.GetDataType(), ACK_TIMER_EXPIRED_DATA_MESSAGE);
    EXPECT_EQ(message.GetValue(), 0);
    EXPECT_EQ(message.GetSource(), &owner);
    EXPECT_EQ(message.GetDestination(), &owner);
    EXPECT_EQ(message.GetSendCount(), 1) << "past the router";
}

TEST_F(RemoteIndicatorAckTimers, send_nothing_after_their_owner_is_deleted) {
    CapturingController owner(ControllerNames[SYSTEM_MONITOR]);
    {
        RemoteIndicatorAckTimer timer;
        timer.SetDuration(OneHour);
        ASSERT_TRUE(timer.Start());
    }
    // Direct delivery keeps the order of posting, so a message of the timer would come before this one.
    AckTimerExpiredMessage marker;
    marker.SetValue(1);
    ASSERT_TRUE(AckTimerExpiredMessage::SendToOwner(std::make_unique<AckTimerExpiredMessage>(marker)));
    EXPECT_EQ(owner.Get<AckTimerExpiredMessage>().GetValue(), 1);
}

TEST(TimerMessages, reach_their_owner_after_the_router_has_ended) {
    MessagingControl router;
    MessageBase::SetMessagingControl(&router);
    {
        CapturingController owner(ControllerNames[SYSTEM_MONITOR]);
        router.Kill();
        pthread_join(router.GetThreadId(), nullptr);
        RemoteIndicatorAckTimer timer;
        ASSERT_TRUE(timer.Start());
        EXPECT_EQ(owner.Get<AckTimerExpiredMessage>().GetValue(), 0);
    }
    MessageBase::SetMessagingControl(nullptr);
}

TEST_F(DataMessageRouting, refuses_the_message_of_a_timer_without_a_registered_owner) {
    EXPECT_FALSE(AckTimerExpiredMessage::SendToOwner(std::make_unique<AckTimerExpiredMessage>()));
    EXPECT_FALSE(TimerCompleteMessage::SendToOwner(std::make_unique<TimerCompleteMessage>()));
}

TEST(TimerMessages, are_refused_without_a_router) {
    EXPECT_FALSE(AckTimerExpiredMessage::SendToOwner(std::make_unique<AckTimerExpiredMessage>()));
    EXPECT_FALSE(TimerCompleteMessage::SendToOwner(std::make_unique<TimerCompleteMessage>()));
}
