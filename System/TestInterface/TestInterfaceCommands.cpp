// The commands of the test link.
#include <algorithm>
#include <iterator>

#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "System/TestInterface/TestInterface.h"

namespace {

constexpr std::uint16_t FirstInputPin = 12000;
constexpr std::uint16_t FirstOutputPin = 13000;
constexpr std::uint16_t FirstPWM = 13300;

// The service computer expects these values from a link that transmits every bit.
constexpr std::int32_t LinkTestValues[] = {0x12345678, 0x33445566, 0x11997788};

enum StateControl : std::uint16_t {
    ABORT_SEQUENCE = 800,
    RUN = 810,
    MOVE_TO_IDLE_FOR = 820,
    MOVE_TO_RUNNING_FOR = 830,
    REPORT_STATE = 840,
    SHUT_DOWN = 850,
    RESET = 860,
};

enum Identification : std::uint16_t { DEVICE_ID = 30100, SERIAL_NUMBER = 30200, MAC_ADDRESS = 30300 };

constexpr std::uint16_t CollectMeasurement = 62100;

// Each MOVE_TO command leads to the state whose number is one higher. The answer to RESET_SYSTEM follows the same rule.
const StdString& NameOfStateAfter(CommandType command) { return ThreadStateNames[command + 1]; }

StdString TextOf(PayloadContainer* payload) { return payload == nullptr ? StdString() : payload->Text(); }

}  // namespace

// A range without an operation is reserved: the command is valid and has no effect. The range from 40100 ends before it
// begins, so it matches nothing and its numbers are invalid. The four groups from 10000 to 13363 are the LIFT requests,
// the factory's direct access to inputs, outputs and PWM.
constexpr TestInterface::CommandRange TestInterface::CommandRanges[] = {
    {0, 999, &TestInterface::ProcessStateControl},
    {10000, 10255, &TestInterface::ProcessAnalogInput},
    {11000, 11063, nullptr},
    {12000, 12255, &TestInterface::ProcessDigitalInput},
    {13000, 13255, &TestInterface::ProcessDigitalOutput},
    {13300, 13363, &TestInterface::ProcessPWM},
    {20100, 20499, nullptr},
    {21100, 22899, nullptr},
    {30100, 30699, &TestInterface::ProcessIdentification},
    {40100, 4199, nullptr},
    {42100, 42199, nullptr},
    {44100, 44599, &TestInterface::ProcessLinkTestData},
    {46100, 46499, nullptr},
    {50200, 56499, nullptr},
    {62000, 62999, &TestInterface::ProcessMeasurementCommand},
};

void TestInterface::ProcessTestCommand(const Request& request) {
    m_phase = COMMAND_HANDLED_PHASE;
    const auto* const range =
        std::find_if(std::begin(CommandRanges), std::end(CommandRanges), [&](const CommandRange& candidate) {
            return request.command >= candidate.first && request.command <= candidate.last;
        });
    if (range == std::end(CommandRanges)) {
        Log("TestInterface::ProcessTestCommand Invalid Test Command Value", ERROR_LOG_LEVEL);
    } else if (range->process != nullptr) {
        (this->*range->process)(request);
    }
}

void TestInterface::ProcessStateControl(const Request& request) {
    switch (request.command) {
        case ABORT_SEQUENCE:
            m_phase = COMMAND_HANDLED_PHASE;
            m_timer.Kill();
            m_response.SendResponse();
            break;
        case RUN:  // for good: the value is ignored
            request.header.SetValue(0.0F);
            MoveToState(&request.header, MOVE_TO_RUNNING);
            break;
        case MOVE_TO_IDLE_FOR:
            MoveToState(&request.header, MOVE_TO_IDLE);
            break;
        case MOVE_TO_RUNNING_FOR:
            MoveToState(&request.header, MOVE_TO_RUNNING);
            break;
        case REPORT_STATE:
            AnswerAndCount(ThreadStateNames[GetState()]);
            break;
        case SHUT_DOWN:
            MoveToState(nullptr, MOVE_TO_SHUTDOWN);
            break;
        case RESET:  // closes the link first, so that the answer cannot be sent
            EndReceiver();
            MoveToState(nullptr, RESET_SYSTEM);
            break;
        default:
            break;
    }
}

// With a period in the header the analyzer returns to the test state after it, and the link stays open until then.
void TestInterface::MoveToState(const CommunicationsCommand* header, CommandType command) {
    m_isLinkDown = true;
    if (header != nullptr) {
        const std::uint32_t period = header->GetMilliseconds();
        if (period != 0) {
            StartTimer(MOVE_TO_TEST, period);
            m_phase = WAITING_PHASE;
            m_isLinkDown = false;
        }
    }
    AnswerAndCount(NameOfStateAfter(command));
    m_phase = COMMAND_HANDLED_PHASE;
    SendCommand(command);
}

void TestInterface::StartTimer(CommandType next, std::uint32_t milliseconds) {
    m_timerPeriod = milliseconds;
    m_timer.SetNextCommand(next);
    m_timer.SetDuration(m_timerPeriod);
    m_timer.Start();
}

void TestInterface::Answer(const StdString& text) {
    m_response.AppendText(text);
    m_response.SendResponse();
}

void TestInterface::AnswerAndCount(const StdString& text) {
    m_response.AppendText(text);
    m_response.DecrementAnswers();
    m_response.SendResponse();
}

void TestInterface::RefuseRequest(const char* text) {
    Log(text, ERROR_LOG_LEVEL);
    AnswerAndCount("error");
}

template <typename Message>
void TestInterface::SendRequest(std::unique_ptr<Message> message, const char* failure) {
    message->SetSubType(REQUEST_SUB_TYPE);
    if (!MessageController::SendMessage(std::move(message), TEST_INTERFACE)) {
        Log(failure, ERROR_LOG_LEVEL);
    }
}

void TestInterface::ProcessAnalogInput(const Request& request) {
    auto message = TryMake<AdcStatusMessage>();
    if (message == nullptr) {
        RefuseRequest("TestInterfaceControl - creating analog input message failed");
        return;
    }
    AdcStatusInfo& info = message->GetAdcStatusInfo();
    info.SetSampleInterval(TimeSpec(request.header.GetWhole(), request.header.GetFraction()));
    info.SetSignalId(request.command);
    info.SetSampleCount(request.header.GetLength());
    SendRequest(std::move(message), "TestInterfaceControl - sending digital input pins message failed");
}

void TestInterface::ProcessDigitalInput(const Request& request) {
    auto message = TryMake<TestDigitalInputPinsMessage>();
    if (message == nullptr) {
        RefuseRequest("TestInterfaceControl - creating digital input pins message failed");
        return;
    }
    message->SetPinId(static_cast<std::uint16_t>(request.command - FirstInputPin));
    SendRequest(std::move(message), "TestInterfaceControl - sending digital input pins message failed");
}

void TestInterface::ProcessDigitalOutput(const Request& request) {
    auto message = TryMake<TestDigitalOutputPinsMessage>();
    if (message == nullptr) {
        RefuseRequest("TestInterfaceControl - creating digital output pins message failed");
        return;
    }
    message->SetPinId(static_cast<std::uint16_t>(request.command - FirstOutputPin));
    message->SetReadMarker(request.header.IsWrite() ? 0 : 1);
    if (request.header.IsWrite()) {
        message->SetValue(TextOf(request.payload));
    }
    SendRequest(std::move(message), "TestInterfaceControl - sending digital input pins message failed");
}

void TestInterface::ProcessPWM(const Request& request) {
    auto message = TryMake<TestPWMMessage>();
    if (message == nullptr) {
        RefuseRequest("TestInterfaceControl - creating PWM message failed");
        return;
    }
    message->SetId(static_cast<std::uint16_t>(request.command - FirstPWM));
    message->SetValue(TextOf(request.payload));
    SendRequest(std::move(message), "TestInterfaceControl - sending PWM message failed");
}

// These answers do not change the count of answers.
void TestInterface::ProcessIdentification(const Request& request) {
    switch (request.command) {
        case DEVICE_ID:
            Answer(m_deviceId);
            break;
        case SERIAL_NUMBER:
            if (request.header.IsWrite() && request.payload != nullptr) {
                m_serialNumber = request.payload->Text();  // until the next reset
            }
            Answer(m_serialNumber);
            break;
        case MAC_ADDRESS:
            m_response.AppendBytes(TCPClient::GetMACAddress(request.header.IsRaw()));
            m_response.SendResponse();
            break;
        default:
            break;
    }
}

void TestInterface::ProcessLinkTestData(const Request& /*request*/) {
    AdcStatusInfo info;
    for (const std::int32_t value : LinkTestValues) {
        const TimeSpec now;
        info.AddReading(now.GetSeconds(), now.GetNanoSeconds(), value);
    }
    m_response.AppendReadings(info.GetReadings());
    m_response.DecrementAnswers();
    m_response.SendResponse();
}

void TestInterface::ProcessMeasurementCommand(const Request& request) {
    if (request.command != CollectMeasurement) {
        return;
    }
    m_phase = WAITING_PHASE;
    SendCommand(COLLECT_MEASUREMENT);
    if (m_response.GetAnswersToGo() >= 2) {
        StartTimer(COLLECT_MEASUREMENT, m_response.GetRequest().GetMilliseconds());
    }
}
