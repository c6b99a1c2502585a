#include "System/TestInterface/TestInterface.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/ImpossibleStack.h"
#include "Tests/System/TestInterface/ControllerFixture.h"

namespace {

using testing::ElementsAre;

constexpr char Sent[] = "CommandResponse::SendResponse  Sent information to Server level 6";

class Requests : public TestInterfaceAlone {
protected:
    // Waits until the request is handled, and expects no answer to it.
    void SendUnanswered(const RawConnection& peer, const Bytes& request) {
        peer.Send(request);
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
        log.Settle();
    }

    // An answer is logged after it was sent.
    void FinishCommands() {
        Command(MOVE_TO_IDLE);
        EXPECT_TRUE(WaitForState(IDLE_STATE));
    }
};

}  // namespace

TEST_F(TestInterfaceAlone, logs_what_it_cannot_register) {
    Start();
    EXPECT_TRUE(WaitForState(INITIALIZING_STATE));
    Command(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(IDLE_STATE));
    EXPECT_FALSE(controller->DoRegistration());  // it has done so before
    EXPECT_THAT(
        log.Lines(),
        ElementsAre("TestInterface::DoRegistration  Unable to register data message \"MEASUREMENT_DATA_MESSAGE\"",
                    "TestInterface::DoRegistration  Unable to register data message \"TEST_COMMAND_DATA_MESSAGE\"",
                    "TestInterface::DoRegistration  Unable to register data message \"ADC_STATUS_MESSAGE\"",
                    "TestInterface::DoRegistration  Unable to register message "
                    "TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE",
                    "MeasurementEngine::DoRegistration  Unable to register message "
                    "TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE of MeasurementEngine",
                    "MeasurementEngine::DoRegistration  Unable to register message TEST_PWM_DATA_MESSAGE of "
                    "MeasurementEngine"));
}

TEST_F(TestInterfaceAlone, waits_without_limit_in_every_state) {
    Start();
    EndThread();
    for (const CommandType type : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        controller->SetTimeOut(5);
        CommandMessage command(type);
        EXPECT_TRUE(controller->ProcessCommandMessage(&command));
        EXPECT_EQ(controller->GetTimeOut(), -1);
        EXPECT_EQ(controller->GetState(), type + 1);
    }
}

TEST_F(TestInterfaceAlone, makes_no_link_once_it_is_killed) {
    Start();
    EndThread();
    CommandMessage command(MOVE_TO_TEST);
    EXPECT_TRUE(controller->ProcessCommandMessage(&command));
    EXPECT_THAT(log.Lines(), ElementsAre());
    EXPECT_THAT(Board().Trace(), ElementsAre());
}

TEST_F(TestInterfaceAlone, enters_the_test_state_and_logs_a_refused_thread) {
    Start();
    Command(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(IDLE_STATE));
    {
        const ImpossibleStack stack;
        Command(MOVE_TO_TEST);
        EXPECT_TRUE(WaitForState(TEST_STATE));
        Command(MOVE_TO_IDLE);  // handled after everything that the other one does
        EXPECT_TRUE(WaitForState(IDLE_STATE));
    }
    EXPECT_THAT(log.Lines(),
                ElementsAre("ThreadBase::CreateThread  Unable to create Thread with error code = " +
                                std::to_string(EAGAIN) + " of MeasurementEngine",
                            "TestInterface::ProcessCommandMessage  Unable to transistion into \"TEST_STATE\""));
    EXPECT_THAT(Board().Trace(), ElementsAre());
}

TEST_F(TestInterfaceAlone, says_so_if_memory_has_run_out_for_the_receiver) {
    Start();
    Command(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(IDLE_STATE));
    FailingAllocation::FailSize(sizeof(ReceiverThread));
    Command(MOVE_TO_TEST);
    EXPECT_TRUE(WaitForState(TEST_STATE));
    Command(MOVE_TO_IDLE);  // comes after all that the other one does
    EXPECT_TRUE(WaitForState(IDLE_STATE));
    EXPECT_THAT(log.Lines(),
                ElementsAre("TestInterface::ProcessCommandMessage  Unable to transistion into \"TEST_STATE\""));
    EXPECT_THAT(Board().Trace(), ElementsAre());
}

TEST_F(Requests, for_analog_readings_carry_period_signal_and_count) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(10086).Value(2, 5000).Count(3));
    const auto& message = engine.Get<AdcStatusMessage>();
    ASSERT_EQ(message.GetDataType(), ADC_STATUS_MESSAGE);
    EXPECT_EQ(message.GetSubType(), REQUEST_SUB_TYPE);
    EXPECT_EQ(message.GetAdcStatusInfo().GetSignalId(), 10086);
    EXPECT_EQ(message.GetAdcStatusInfo().GetSampleCount(), 3U);
    EXPECT_EQ(message.GetAdcStatusInfo().GetSampleInterval().GetSeconds(), 2);
    EXPECT_EQ(message.GetAdcStatusInfo().GetSampleInterval().GetNanoSeconds(), 5000);
    EXPECT_EQ(message.GetSource(), controller.get());
}

TEST_F(Requests, for_an_input_carry_its_pin) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(12255));
    const auto& message = engine.Get<TestDigitalInputPinsMessage>();
    ASSERT_EQ(message.GetDataType(), TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE);
    EXPECT_EQ(message.GetSubType(), REQUEST_SUB_TYPE);
    EXPECT_EQ(message.GetPinId(), 255);
}

TEST_F(Requests, for_an_output_carry_its_pin_and_what_to_write) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(13021).Write("1"));
    const auto& message = engine.Get<TestDigitalOutputPinsMessage>();
    ASSERT_EQ(message.GetDataType(), TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE);
    EXPECT_EQ(message.GetSubType(), REQUEST_SUB_TYPE);
    EXPECT_EQ(message.GetPinId(), 21);
    EXPECT_EQ(message.GetReadMarker(), 0);
    EXPECT_EQ(message.GetValue(), "1");
}

TEST_F(Requests, to_read_an_output_are_marked_so) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(13000));
    EXPECT_NE(engine.Get<TestDigitalOutputPinsMessage>().GetReadMarker(), 0);
    EXPECT_EQ(engine.Get<TestDigitalOutputPinsMessage>().GetValue(), "");
}

TEST_F(Requests, to_write_an_output_without_a_payload_carry_an_empty_text) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(13000).Flags(1));
    EXPECT_EQ(engine.Get<TestDigitalOutputPinsMessage>().GetReadMarker(), 0);
    EXPECT_EQ(engine.Get<TestDigitalOutputPinsMessage>().GetValue(), "");
}

TEST_F(Requests, for_pulses_carry_channel_function_and_value) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(13305).Write("12.5"));
    SendUnanswered(peer, Frame(13363));
    const auto& message = engine.Get<TestPWMMessage>();
    ASSERT_EQ(message.GetDataType(), TEST_PWM_DATA_MESSAGE);
    EXPECT_EQ(message.GetSubType(), REQUEST_SUB_TYPE);
    EXPECT_EQ(message.GetId(), 5);
    EXPECT_EQ(message.GetValue(), "12.5");
    EXPECT_EQ(engine.Get<TestPWMMessage>(1).GetId(), 63);
    EXPECT_EQ(engine.Get<TestPWMMessage>(1).GetValue(), "");
}

TEST_F(Requests, without_memory_are_answered_with_error) {
    const RawConnection peer = Connect();
    const struct {
        std::uint16_t command;
        std::size_t size;
        const char* line;
    } cases[] = {
        {10086, sizeof(AdcStatusMessage), "TestInterfaceControl - creating analog input message failed"},
        {12000, sizeof(TestDigitalInputPinsMessage),
         "TestInterfaceControl - creating digital input pins message failed"},
        {13000, sizeof(TestDigitalOutputPinsMessage),
         "TestInterfaceControl - creating digital output pins message failed"},
        {13300, sizeof(TestPWMMessage), "TestInterfaceControl - creating PWM message failed"},
    };
    std::vector<std::string> expected;
    for (const auto& one : cases) {
        FailingAllocation::FailSize(one.size);
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(one.command))), Text("error"));
        expected.emplace_back(one.line);
        expected.emplace_back(Sent);
    }
    FinishCommands();
    EXPECT_EQ(log.Lines(), expected);
    EXPECT_EQ(engine.Count(), 0U);
}

TEST_F(Requests, are_answered_with_the_readings_that_come_back) {
    const RawConnection peer = Connect();
    AdcStatusMessage answer;
    answer.SetSubType(RESPONSE_SUB_TYPE);
    answer.GetAdcStatusInfo().AddReading(0x04030201, 0x08070605, 0x0C0B0A09);
    answer.GetAdcStatusInfo().AddReading(1, 2, -1);
    SendUnanswered(peer, Frame(10086).Count(2));
    Send(answer);
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)).substr(19),  // after the answer to 840
              std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C"
                          "\x01\x00\x00\x00\x02\x00\x00\x00\xFF\xFF\xFF\xFF",
                          24));
}

TEST_F(Requests, are_answered_with_the_pins_that_come_back) {
    const RawConnection peer = Connect();
    peer.Send(Frame(12003));
    TestDigitalInputPinsMessage answer;
    answer.SetSubType(RESPONSE_SUB_TYPE);
    answer.SetValues({'1', '\0'});
    EXPECT_EQ(engine.Get<TestDigitalInputPinsMessage>().GetPinId(), 3);
    Send(answer);
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)), std::string("1\0", 2));
}

TEST_F(Requests, are_answered_with_the_texts_that_come_back) {
    const RawConnection peer = Connect();
    peer.Send(Frame(13003).Write("1"));
    EXPECT_EQ(engine.Get<TestDigitalOutputPinsMessage>().GetPinId(), 3);
    TestDigitalOutputPinsMessage output;
    output.SetSubType(RESPONSE_SUB_TYPE);
    output.SetValue("Success");
    Send(output);
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)), Text("Success"));
    peer.Send(Frame(13301).Write("50"));
    EXPECT_EQ(engine.Get<TestPWMMessage>(2).GetId(), 1);  // after the answer, which it captures too
    TestPWMMessage pulses;
    pulses.SetSubType(RESPONSE_SUB_TYPE);
    pulses.SetValue("50");
    Send(pulses);
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)), Text("50"));
}

TEST_F(Requests, and_acknowledgements_that_come_back_are_not_answered) {
    const RawConnection peer = Connect();
    for (const std::int32_t subType : {REQUEST_SUB_TYPE, ACKNOWLEDGE_SUB_TYPE}) {
        AdcStatusMessage readings;
        readings.SetSubType(subType);
        Send(readings);
        TestDigitalInputPinsMessage pins;
        pins.SetSubType(subType);
        Send(pins);
        TestDigitalOutputPinsMessage output;
        output.SetSubType(subType);
        Send(output);
        TestPWMMessage pulses;
        pulses.SetSubType(subType);
        Send(pulses);
    }
    log.Settle();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
    FinishCommands();
    EXPECT_THAT(log.Lines(), ElementsAre(Sent));
}
