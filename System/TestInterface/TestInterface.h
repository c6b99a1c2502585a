// The controller of the test link: in the test state it holds the connection to the test server, carries out the
// server's commands and answers them. Kill may be called from any thread; all else runs on the controller's thread.
#pragma once

#include <atomic>
#include <memory>

#include "Frameworks/Messaging/ThreadControl.h"
#include "System/Messages/TestCommandMessage.h"
#include "System/TestInterface/CommandResponse.h"
#include "System/TestInterface/ReceiverThread.h"
#include "System/TestInterface/TestInterfaceTimer.h"

class TestInterface final : public ThreadControl {
public:
    TestInterface();
    TestInterface(const TestInterface&) = delete;
    TestInterface& operator=(const TestInterface&) = delete;
    ~TestInterface() override;

    void Kill() override;  // the link first
    bool Init() override;
    bool DoRegistration() override;
    bool ProcessCommandMessage(CommandMessage* message) override;
    bool ProcessDataMessage(DataMessage* message) override;

private:
    enum Phase : std::int32_t {
        IDLE_PHASE = 0,
        COMMAND_HANDLED_PHASE = 1,
        COMMAND_RECEIVED_PHASE = 2,
        WAITING_PHASE = 3,  // for a measurement or the timer
        BUSY_PHASE = 4,     // with the outcome of either
    };

    // The content of a frame from the link; the payload may be null.
    struct Request {
        std::uint16_t command;
        CommunicationsCommand& header;
        PayloadContainer* payload;
    };

    struct CommandRange {
        std::uint16_t first;
        std::uint16_t last;
        void (TestInterface::*process)(const Request& request);  // null: no action, no answer
    };

    static const CommandRange CommandRanges[];

    void GatherConfiguration();

    // The link.
    bool CreateReceiver();  // true, too, if there is one already, or none is wanted any more
    void EndReceiver();     // kills, joins and deletes it, if there is one
    std::unique_ptr<ReceiverThread> TakeReceiver(bool onlyIfEnded);
    void EndReceiverUnlessTheLinkStays();
    void LinkEnded();
    static void Join(const ReceiverThread& receiver);
    bool HandClientToResponse();  // false without a receiver

    // What comes by message.
    void ProcessReadings(const DataMessage& message);
    void ProcessMeasurement(const DataMessage& message);
    void ProcessTimerCompletion(const DataMessage& message);
    void ProcessTestCommandMessage(const TestCommandMessage& message);
    void ProcessInputPins(const DataMessage& message);
    template <typename Message>
    void ProcessText(const DataMessage& message);

    // The commands of the link.
    void ProcessTestCommand(const Request& request);
    void ProcessStateControl(const Request& request);
    void ProcessAnalogInput(const Request& request);
    void ProcessDigitalInput(const Request& request);
    void ProcessDigitalOutput(const Request& request);
    void ProcessPWM(const Request& request);
    void ProcessIdentification(const Request& request);
    void ProcessLinkTestData(const Request& request);
    void ProcessMeasurementCommand(const Request& request);

    void MoveToState(const CommunicationsCommand* header, CommandType command);
    void StartTimer(CommandType next, std::uint32_t milliseconds);
    void Answer(const StdString& text);
    void AnswerAndCount(const StdString& text);
    void RefuseRequest(const char* text);
    template <typename Message>
    void SendRequest(std::unique_ptr<Message> message, const char* failure);

    Phase m_phase = IDLE_PHASE;
    TestInterfaceTimer m_timer;
    std::uint32_t m_timerPeriod = 0;  // milliseconds, the last one used
    bool m_startInTestMode = false;
    bool m_isLinkDown = false;  // no new receiver after the end of this one
    StdString m_serialNumber;
    StdString m_deviceId;
    CommandResponse m_response;

    Mutex m_receiverMutex;
    std::unique_ptr<ReceiverThread> m_receiver GUARDED_BY(m_receiverMutex);
    bool m_isKilled GUARDED_BY(m_receiverMutex) = false;
};
