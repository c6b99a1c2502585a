#include "System/TestInterface/ReceiverThread.h"

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/Messages/TestCommandMessage.h"

namespace {

void Log(const StdString& text, LogLevel level) { MessageController::LogMessage(text, level, TEST_INTERFACE); }

// Straight to the controller's queue, past the router.
void Post(std::unique_ptr<TestCommandMessage> message) {
    message->SetSource(TEST_INTERFACE);
    message->SetDestination(TEST_INTERFACE);
    MessageBase::Send(std::move(message));
}

}  // namespace

ReceiverThread::ReceiverThread() { StartAs(ControllerNames[TEST_INTERFACE] + "_ReceiverThread"); }

std::int32_t ReceiverThread::Run() {
    bool keepGoing = Init();
    while (keepGoing && m_client.IsConnected()) {
        keepGoing = ReceiveFrame();
    }
    return Exit();
}

bool ReceiverThread::Init() {
    ThreadBase::Init();
    ReadConfiguration();
    m_client.SetServerIPAddress(m_serverIPAddress);
    m_client.SetServerName(m_serverName);
    TCPClient::SetInterfaceName(m_interfaceName);
    return m_client.GetLocalHostInfo() && m_client.ResolveServer() && ConnectWithRetries();
}

void ReceiverThread::ReadConfiguration() {
    const TestInterfaceConfigInfo& section = SingletonBase::GetSystemConfiguration()->RequireTestInterfaceConfigInfo();
    m_serverIPAddress = section.GetValueOr("TestServerIPAddress", "127.0.0.1");
    m_serverName = section.GetValueOr("TestServerName", "Local");
    m_portNumber = section.GetValueOr("TestServerPortNumber", "1200");
    m_retryCount = section.GetValueOr("ConnectionRetryCount", "1");
    m_retryWaitPeriod = section.GetValueOr("ConnectionRetryWaitPeriod", "3");
    m_interfaceName = section.GetValueOr("EthernetInterfaceName", "eth0");
}

// The wait follows each attempt, the one that succeeded too.
bool ReceiverThread::ConnectWithRetries() {
    const std::uint32_t port = m_portNumber.ToUnsigned();
    const std::uint32_t wait = m_retryWaitPeriod.ToUnsigned();
    bool isConnected = false;
    for (std::uint32_t left = m_retryCount.ToUnsigned(); !isConnected && left > 0; --left) {
        if (m_gate->IsClosed()) {
            return false;
        }
        isConnected = m_client.Connect(static_cast<std::int32_t>(port));
        m_gate->Sleep(std::chrono::seconds(wait));
    }
    return isConnected;
}

// False at the end of the link. A payload that can't be read gives no message, and the next header is tried.
bool ReceiverThread::ReceiveFrame() {
    std::unique_ptr<CommunicationsCommand> command = m_client.ReceiveCommand();
    if (command == nullptr) {
        return false;
    }
    std::unique_ptr<PayloadContainer> payload;
    if (command->IsWrite() && command->GetLength() != 0) {
        payload = m_client.ReceivePayload(command->GetLength());
        if (payload == nullptr) {
            return true;
        }
    }
    std::shared_ptr<void> receipt = FrameGate::Pass(m_gate);
    if (receipt == nullptr) {
        return false;
    }
    auto message = std::make_unique<TestCommandMessage>();
    message->SetCommand(std::move(command));
    message->SetPayload(std::move(payload));
    message->SetReceipt(std::move(receipt));
    Post(std::move(message));
    return true;
}

std::int32_t ReceiverThread::Exit() {
    m_hasEnded = true;
    Post(std::make_unique<TestCommandMessage>());
    const std::int32_t result = ThreadBase::Exit();
    Log("ReceiverThread::Exit() Ethernet Receiver Thread Exiting", INFORMATIONAL_LOG_LEVEL);
    return result;
}

void ReceiverThread::Kill() {
    Log("Killing Thread for - " + GetThreadName(), DEBUG_LOG_LEVEL);
    m_gate->Close();
    m_client.CloseForGood();
}
