#include "System/TestInterface/TestInterface.h"

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "System/Messages/TimerCompleteMessage.h"

namespace {

struct Subscription {
    DataMessageType type;
    const char* failure;
    ControllerType origin;
};

// The last two report their failure in the name of the other controller, which handles these messages.
constexpr Subscription Subscriptions[] = {
    {MEASUREMENT_DATA_MESSAGE,
     "TestInterface::DoRegistration  Unable to register data message \"MEASUREMENT_DATA_MESSAGE\"", TEST_INTERFACE},
    {TEST_COMMAND_DATA_MESSAGE,
     "TestInterface::DoRegistration  Unable to register data message \"TEST_COMMAND_DATA_MESSAGE\"", TEST_INTERFACE},
    {ADC_STATUS_MESSAGE,  //
     "TestInterface::DoRegistration  Unable to register data message \"ADC_STATUS_MESSAGE\"", TEST_INTERFACE},
    {TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE,
     "TestInterface::DoRegistration  Unable to register message TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE", TEST_INTERFACE},
    {TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE,
     "MeasurementEngine::DoRegistration  Unable to register message TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE",
     MEASUREMENT_ENGINE},
    {TEST_PWM_DATA_MESSAGE,  //
     "MeasurementEngine::DoRegistration  Unable to register message TEST_PWM_DATA_MESSAGE", MEASUREMENT_ENGINE},
};

constexpr char NoTestState[] = "TestInterface::ProcessCommandMessage  Unable to transistion into \"TEST_STATE\"";
constexpr char NoRunningState[] = "TestInterface::ProcessCommandMessage  Unable to transistion into \"RUNNING_STATE\"";

bool IsResponse(const DataMessage& message) { return message.GetSubType() == RESPONSE_SUB_TYPE; }

}  // namespace

TestInterface::TestInterface() { StartAs(ControllerNames[TEST_INTERFACE]); }

TestInterface::~TestInterface() { EndReceiver(); }

void TestInterface::Kill() {
    {
        const MutexLock lock(m_receiverMutex);
        m_isKilled = true;
    }
    EndReceiver();
    ThreadControl::Kill();
}

bool TestInterface::Init() {
    InitController();
    DoRegistration();
    GatherConfiguration();
    return true;
}

bool TestInterface::DoRegistration() {
    bool result = true;
    for (const Subscription& subscription : Subscriptions) {
        if (!RegisterForDataMessage(subscription.type)) {
            MessageController::LogMessage(subscription.failure, ERROR_LOG_LEVEL, subscription.origin);
            result = false;
        }
    }
    return result;
}

void TestInterface::GatherConfiguration() {
    Log("Gathering Configuration Information for - " + GetThreadName(), DEBUG_LOG_LEVEL);
    const SystemConfigurationFile& file = *SingletonBase::GetSystemConfiguration();
    m_startInTestMode = file.RequireTestInterfaceConfigInfo().GetValueOr("StartInTestMode", "false").ToBool();
    m_serialNumber = file.RequireGlobalConfigInfo().GetValueOr("SerialNumber", "InvalidSerialNumber");
    m_deviceId = file.RequireGlobalConfigInfo().GetValueOr("DeviceID", "InvalidDevice");
}

bool TestInterface::ProcessCommandMessage(CommandMessage* message) {
    if (message == nullptr) {
        return false;
    }
    const CommandType command = message->GetCommandType();
    switch (command) {
        case MOVE_TO_IDLE:
        case MOVE_TO_SHUTDOWN:
            EndReceiverUnlessTheLinkStays();
            FollowStateCommand(command);
            m_phase = IDLE_PHASE;
            SetTimeOut(-1);
            break;
        case MOVE_TO_RUNNING:
            EndReceiverUnlessTheLinkStays();
            if (!FollowStateCommand(command)) {
                Log(NoRunningState, ERROR_LOG_LEVEL);
            }
            m_phase = IDLE_PHASE;
            SetTimeOut(-1);
            if (m_startInTestMode) {
                SendCommand(MOVE_TO_TEST);
                m_startInTestMode = false;
            }
            break;
        case MOVE_TO_TEST:
            FollowStateCommand(command);
            m_phase = COMMAND_HANDLED_PHASE;
            SetTimeOut(-1);
            if (!CreateReceiver()) {
                Log(NoTestState, ERROR_LOG_LEVEL);
            }
            break;
        default:
            break;
    }
    return true;
}

bool TestInterface::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    switch (message->GetDataType()) {
        case ADC_STATUS_MESSAGE:
            ProcessReadings(*message);
            break;
        case MEASUREMENT_DATA_MESSAGE:
            ProcessMeasurement(*message);
            break;
        case TIMER_COMPLETION_DATA_MESSAGE:
            ProcessTimerCompletion(*message);
            break;
        case TEST_COMMAND_DATA_MESSAGE:
            ProcessTestCommandMessage(static_cast<const TestCommandMessage&>(*message));
            break;
        case TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE:
            ProcessInputPins(*message);
            break;
        case TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE:
            ProcessText<TestDigitalOutputPinsMessage>(*message);
            break;
        case TEST_PWM_DATA_MESSAGE:
            ProcessText<TestPWMMessage>(*message);
            break;
        default:
            break;
    }
    return true;
}

void TestInterface::ProcessReadings(const DataMessage& message) {
    if (!IsResponse(message)) {
        return;
    }
    m_response.AppendReadings(static_cast<const AdcStatusMessage&>(message).GetAdcStatusInfo().GetReadings());
    m_response.DecrementAnswers();
    m_response.SendResponse();
}

// The measurements of a sequence gather in one answer.
void TestInterface::ProcessMeasurement(const DataMessage& message) {
    if (GetState() != TEST_STATE || m_phase != WAITING_PHASE) {
        return;
    }
    m_phase = BUSY_PHASE;
    m_response.AppendMeasurement(message);
    m_response.DecrementAnswers();
    m_phase = COMMAND_HANDLED_PHASE;
    if (!m_response.HasAnswersToGo()) {
        m_response.SendResponse();
    }
}

void TestInterface::ProcessTimerCompletion(const DataMessage& message) {
    const auto& completion = static_cast<const TimerCompleteMessage&>(message);
    m_phase = BUSY_PHASE;
    if (m_response.HasAnswersToGo()) {
        StartTimer(completion.GetNextCommand(), completion.GetDuration());
    }
    SendCommand(completion.GetNextCommand());
    m_phase = WAITING_PHASE;
}

void TestInterface::ProcessTestCommandMessage(const TestCommandMessage& message) {
    if (GetState() != TEST_STATE) {
        return;
    }
    CommunicationsCommand* header = message.GetCommand();
    if (header == nullptr) {
        LinkEnded();
        return;
    }
    if (!HandClientToResponse()) {
        return;
    }
    m_phase = COMMAND_RECEIVED_PHASE;
    m_response.SetRequest(*header);
    ProcessTestCommand({header->GetCommand(), *header, message.GetPayload()});
}

void TestInterface::ProcessInputPins(const DataMessage& message) {
    if (!IsResponse(message)) {
        return;
    }
    const std::vector<char>& values = static_cast<const TestDigitalInputPinsMessage&>(message).GetValues();
    m_response.AppendBytes({values.begin(), values.end()});
    m_response.DecrementAnswers();
    m_response.SendResponse();
}

template <typename Message>
void TestInterface::ProcessText(const DataMessage& message) {
    if (IsResponse(message)) {
        AnswerAndCount(static_cast<const Message&>(message).GetValue());
    }
}
