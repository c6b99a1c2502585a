#include "System/UserInterfaceDataControl/UserInterfaceDataControl.h"

#include <unistd.h>

#include "Drivers/Print.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TryMake.h"
#include "Frameworks/Utilities/Version.h"

namespace {

constexpr unsigned SecondsForFrontEnd = 10;  // to start after power-on, on the same board

// The commands of the front end.
enum Code : std::int32_t {
    GO_TO_IDLE = 1,
    GO_TO_RUNNING = 2,
    RESET = 3,
    PRIME = 4,
    QUESTION = 8,
};

constexpr struct {
    DataMessageType type;
    const char* failure;
} Subscriptions[] = {
    {MEASUREMENT_DATA_MESSAGE,
     "UserInterfaceDataControl::DoRegistration :: Unable to register reception of MEASUREMENT_DATA_MESSAGE message"},
    {MEASUREMENT_STATUS_MESSAGE,
     "UserInterfaceDataControl::DoRegistration :: Unable to register reception of MEASUREMENT_STATUS_MESSAGE message"},
    {USER_INTERFACE_DATA_MESSAGE,
     "UserInterfaceDataControl::DoRegistration :: Unable to register reception of USER_INTERFACE_DATA_MESSAGE"},
    {GUI_RESPONSE_DATA_MESSAGE,
     "UserInterfaceDataControl::DoRegistration :: Unable to register reception of GUI_RESPONSE_DATA_MESSAGE"},
};

std::unique_ptr<CommunicationProtocol> MakeProtocol() {
    auto protocol = TryMake<CommunicationProtocol>();
    if (protocol != nullptr) {
        protocol->Init();
    }
    return protocol;
}

void PrintUnknown(const GuiCommand& command) {
    const std::string code = std::to_string(static_cast<std::uint32_t>(command.code));
    PrintOutput("First Part " + code + "\nSecond Part " + command.text.Text() + "\n");
}

}  // namespace

UserInterfaceDataControl::UserInterfaceDataControl() { StartAs(ControllerNames[USER_INTERFACE_DATA_CONTROL]); }

bool UserInterfaceDataControl::Init() {
    LogInitializing();
    sleep(SecondsForFrontEnd);
    m_receiver = std::make_unique<ReceiverThreadForGUI>();
    return ThreadControl::Init() && DoRegistration();
}

bool UserInterfaceDataControl::DoRegistration() {
    for (const auto& subscription : Subscriptions) {
        if (!RegisterForDataMessage(subscription.type)) {
            return ReportError(subscription.failure, USER_INTERFACE_DATA_CONTROL);
        }
    }
    return true;
}

bool UserInterfaceDataControl::ProcessMessage() {
    ThreadControl::ProcessMessage();
    return true;
}

bool UserInterfaceDataControl::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    switch (message->GetDataType()) {
        case MEASUREMENT_DATA_MESSAGE:
            return GetState() == RUNNING_STATE && SendMeasurement(static_cast<const MeasurementMessage*>(message));
        case MEASUREMENT_STATUS_MESSAGE:
            return SendStatus(static_cast<const MeasurementStatusMessage*>(message)->GetStatusInfo().GetText());
        case USER_INTERFACE_DATA_MESSAGE:
            return ProcessGuiCommand(static_cast<const UserInterfaceDataMessage*>(message));
        case GUI_RESPONSE_DATA_MESSAGE:
            return SendGuiResponse(static_cast<const GUIResponseMessage*>(message));
        default:
            return true;
    }
}

bool UserInterfaceDataControl::SendMeasurement(const MeasurementMessage* message) {
    const auto protocol = MakeProtocol();
    if (protocol == nullptr) {
        return false;
    }
    const MeasurementResults& results = message->GetMeasurementResults();
    protocol->SetChlorineValue(static_cast<float>(results.GetChlorine()));
    protocol->SetDateValue(results.GetTime().GetSeconds());
    return SendStringToGUI(protocol.get());
}

// Each status is sent with the software version.
bool UserInterfaceDataControl::SendStatus(const StdString& text) {
    if (const auto protocol = MakeProtocol()) {
        protocol->SetSoftwareVersion(GetVersionText());
        protocol->SetInstrumentStatus(text);
        SendStringToGUI(protocol.get());
    }
    return true;
}

// Sends the number only; the text of the message is not sent.
bool UserInterfaceDataControl::SendGuiResponse(const GUIResponseMessage* message) {
    if (const auto protocol = MakeProtocol()) {
        protocol->SetCommandValue(message->GetStatus());
        SendStringToGUI(protocol.get());
    }
    return true;
}

bool UserInterfaceDataControl::SendStringToGUI(CommunicationProtocol* protocol) {
    const StdString frame = protocol->Serialize();
    if (m_receiver != nullptr && m_receiver->GetClient()->IsConnected()) {
        return m_receiver->GetClient()->SendString(frame);
    }
    Log("UserInterfaceDataControl::SendStringToGUI :: Failed to send message to GUI.", ERROR_LOG_LEVEL);
    return false;
}

bool UserInterfaceDataControl::ProcessGuiCommand(const UserInterfaceDataMessage* message) {
    return MakeProtocol() != nullptr && ActOn(CommunicationProtocol::ParseCommand(message->GetText()));
}

// The state tested is that of this controller; a command goes to all controllers.
bool UserInterfaceDataControl::ActOn(const GuiCommand& command) {
    switch (command.code) {
        case GO_TO_IDLE:
            if (GetState() != IDLE_STATE) {
                SendCommand(MOVE_TO_IDLE);
            }
            return true;
        case GO_TO_RUNNING:
            if (GetState() != RUNNING_STATE) {
                SendCommand(MOVE_TO_RUNNING);
            }
            return true;
        case RESET:
            SendCommand(RESET_SYSTEM);
            return false;
        case PRIME:
            if (GetState() == IDLE_STATE) {
                SendCommand(PRIME_SYSTEM);
            }
            return true;
        case QUESTION:
            PrintOutput("We should check to see if the application is OKAY\n");
            return false;
        default:
            PrintUnknown(command);
            return false;
    }
}

// The origin of the error line is the test link's controller, which log filters expect.
std::int32_t UserInterfaceDataControl::Exit() {
    const std::int32_t result = ThreadControl::Exit();
    if (m_receiver == nullptr) {
        return result;
    }
    m_receiver->Kill();
    JoinThread(*m_receiver, "UserInterfaceDataControl::Exit  Error within pthread_join", EMERGENCY_LOG_LEVEL,
               TEST_INTERFACE);
    m_receiver.reset();
    return result;
}
