#include "System/MeasurementEngine/MeasurementEngine.h"

#include <unistd.h>

#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/MeasurementEngine/LiftRequests.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/GUIResponseMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"

namespace {

constexpr unsigned SettleSeconds = 10;  // of an instrument that leaves running between two cycles
constexpr unsigned RetrySeconds = 1;

void TellFrontEnd(std::int32_t status, const char* text) {
    auto response = TryMake<GUIResponseMessage>();
    if (response == nullptr) {
        return;  // the state changes all the same
    }
    response->SetStatus(status);
    response->SetText(text);
    MessageController::SendMessage(std::move(response), MEASUREMENT_ENGINE);
}

}  // namespace

MeasurementEngine::MeasurementEngine() { StartAs(ControllerNames[MEASUREMENT_ENGINE]); }

bool MeasurementEngine::Init() { return InitController() && DoRegistration(); }

void MeasurementEngine::Kill() {
    if (GetState() != IDLE_STATE) {
        m_control.AbortMeasurement();
    }
    ThreadControl::Kill();
}

bool MeasurementEngine::ProcessCommandMessage(CommandMessage* message) {
    if (message == nullptr) {
        return false;
    }
    switch (message->GetCommandType()) {
        case MOVE_TO_IDLE:
            MoveToIdle();
            break;
        case MOVE_TO_RUNNING:
            MoveToRunning();
            break;
        case MOVE_TO_SHUTDOWN:
            MoveToShutdown();
            break;
        case MOVE_TO_TEST:
            SetState(TEST_STATE);  // a running cycle goes on to its end
            break;
        case PRIME_SYSTEM:
            Prime();
            break;
        case COLLECT_MEASUREMENT:
            Collect(*message);
            break;
        default:
            break;
    }
    return true;
}

void MeasurementEngine::MoveToIdle() {
    if (GetState() == IDLE_STATE) {
        return;
    }
    if (!m_control.AbortMeasurement() && GetState() == RUNNING_STATE) {
        sleep(SettleSeconds);
    }
    TellFrontEnd(ENTERED_IDLE, "Entered IDLE STATE");
    SetState(IDLE_STATE);
}

void MeasurementEngine::MoveToRunning() {
    if (GetState() == RUNNING_STATE) {
        return;
    }
    TellFrontEnd(ENTERED_RUNNING, "Entered RUNNING STATE");
    SetState(RUNNING_STATE);
}

void MeasurementEngine::MoveToShutdown() {
    if (GetState() != IDLE_STATE) {
        m_control.AbortMeasurement();
    }
    SetState(SHUTDOWN_STATE);
}

void MeasurementEngine::Prime() {
    if (GetState() == RUNNING_STATE && !m_control.PrimeSystem()) {
        ReportError("MeasurementEngine::ProcessCommandMessage  Unable to perform priming operations",
                    MEASUREMENT_ENGINE);
    }
}

// A refused start is asked for again each second, until a cycle can start or the state changes.
void MeasurementEngine::Collect(const CommandMessage& message) {
    if (GetState() != RUNNING_STATE || m_control.StartMeasurement()) {
        return;
    }
    ReportError("MeasurementEngine::ProcessCommandMessage  Unable to start measurement control", MEASUREMENT_ENGINE);
    sleep(RetrySeconds);
    auto again = message.Clone();
    again->SetSource(this);
    again->SetDestination(this);
    MessageBase::Send(std::move(again));
}

bool MeasurementEngine::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    if (message->GetDataType() == ADC_STATUS_MESSAGE) {
        AnalogInput(*message);
        return true;
    }
    if (message->GetSubType() != REQUEST_SUB_TYPE) {
        return true;
    }
    switch (message->GetDataType()) {
        case TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE:
            LIFTDigitalInput(static_cast<const TestDigitalInputPinsMessage&>(*message));
            break;
        case TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE:
            LIFTDigitalOutput(static_cast<const TestDigitalOutputPinsMessage&>(*message));
            break;
        case TEST_PWM_DATA_MESSAGE:
            LIFTPWM(static_cast<const TestPWMMessage&>(*message));
            break;
        default:
            break;
    }
    return true;
}

void MeasurementEngine::AnalogInput(const DataMessage& message) {
    if (!LIFTAnalogInput(static_cast<const AdcStatusMessage*>(&message))) {
        Log("ERROR: LIFTAnalogInput - " + GetThreadName(), DEBUG_LOG_LEVEL);
    }
}
