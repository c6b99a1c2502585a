#include "System/UserInterfaceDataControl/ReceiverThreadForGUI.h"

#include <unistd.h>

#include "Frameworks/Messaging/MessageController.h"

namespace {

// The text that the socket returns if reading fails. A front end that sends it ends the receiver too.
constexpr char NoText[] = "NULL";

}  // namespace

ReceiverThreadForGUI::ReceiverThreadForGUI() {
    StartAs(ControllerNames[USER_INTERFACE_DATA_CONTROL] + "ReceiverThreadForGUI");
}

bool ReceiverThreadForGUI::Init() {
    const bool result = ThreadBase::Init();
    m_serverIPAddress = "127.0.0.1";
    m_serverName = "Localhost";
    m_portNumber = "3111";
    m_connectionRetryCount = "10";
    m_interfaceName = "lo";
    m_client.SetServerIPAddress(m_serverIPAddress);
    m_client.SetServerName(m_serverName);
    TCPClient::SetInterfaceName(m_interfaceName);
    if (!result || !m_client.GetLocalHostInfo() || !m_client.ResolveServer()) {
        return result;
    }
    return ConnectWithRetries();
}

bool ReceiverThreadForGUI::ConnectWithRetries() {
    const std::int32_t port = m_portNumber.ToInteger();
    const unsigned wait = m_connectionRetryWaitPeriod.ToUnsigned();
    bool isConnected = false;
    for (std::int32_t left = m_connectionRetryCount.ToInteger(); !isConnected && left > 0; --left) {
        isConnected = m_client.Connect(port);
        sleep(wait);
    }
    return isConnected;
}

std::int32_t ReceiverThreadForGUI::Run() {
    bool isRunning = Init();
    while (isRunning) {
        const StdString text = m_client.ReceiveString();
        if (text == NoText) {
            isRunning = false;
        } else {
            PostMessage(MakeMessage(text));
        }
    }
    return 0;
}

void ReceiverThreadForGUI::Kill() {
    MessageController::LogMessage("Killing Thread for - " + GetThreadName(), DEBUG_LOG_LEVEL,
                                  USER_INTERFACE_DATA_CONTROL);
    m_client.CloseForGood();
}

std::int32_t ReceiverThreadForGUI::Exit() {
    PostMessage(MakeMessage(StdString()));
    const std::int32_t result = ThreadBase::Exit();
    MessageController::LogMessage("ReceiverThread::Exit() User Interface Receiver Thread Exiting",
                                  INFORMATIONAL_LOG_LEVEL, USER_INTERFACE_DATA_CONTROL);
    return result;
}

std::unique_ptr<UserInterfaceDataMessage> ReceiverThreadForGUI::MakeMessage(const StdString& text) {
    auto message = std::make_unique<UserInterfaceDataMessage>();
    message->SetText(text);
    return message;
}

void ReceiverThreadForGUI::PostMessage(std::unique_ptr<UserInterfaceDataMessage> message) {
    if (message == nullptr) {
        return;
    }
    message->SetDestination(USER_INTERFACE_DATA_CONTROL);
    message->SetSource(USER_INTERFACE_DATA_CONTROL);
    MessageBase::Send(std::move(message));
}
