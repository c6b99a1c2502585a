#include "Frameworks/IPC/Networking/TCPSocket.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "Frameworks/IPC/Networking/HostInfo.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"

namespace {

constexpr std::size_t MaxStringSize = 1024;

}  // namespace

TCPSocket& TCPSocket::operator=(const TCPSocket& other) {
    Socket::operator=(other);
    m_connected = other.m_connected.load();
    return *this;
}

bool TCPSocket::ConnectToServer(const StdString& host, std::int32_t hostType) {
    m_connected = false;
    const HostInfo info(host, hostType);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = inet_addr(info.getHostIPAddress().CString());
    address.sin_port = htons(static_cast<std::uint16_t>(GetPortNumber()));
    const HeldDescriptor descriptor = Hold();
    if (connect(NumberOf(descriptor), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
        return ReportError("TCPSocket::ConnectToServer  Unable to connect to server", TEST_INTERFACE);
    }
    m_connected = true;
    return true;
}

std::unique_ptr<CommunicationsCommand> TCPSocket::RecieveCommand() {
    auto command = std::make_unique<CommunicationsCommand>();
    command->Clear();
    const ssize_t received = recv(NumberOf(Hold()), command->GetImage().data(), CommunicationsCommand::Size, 0);
    if (received == -1) {
        ReportError("TCPSocket::RecieveCommand  Error in receiving header information", TEST_INTERFACE);
        return nullptr;
    }
    if (received == 0) {
        MessageController::LogMessage("TCPSocket::RecieveCommand  Server Disconnected", INFORMATIONAL_LOG_LEVEL,
                                      TEST_INTERFACE);
        return nullptr;
    }
    return command;
}

std::unique_ptr<PayloadContainer> TCPSocket::RecievePayload(std::uint32_t length) {
    // The server chooses the length. Bytes that don't arrive are never touched, so they take no memory.
    const std::size_t size = std::size_t{length} + PayloadContainer::CRCSize;
    const auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    const ssize_t received = recv(NumberOf(Hold()), bytes.get(), size, 0);
    if (received == -1) {
        ReportError("TCPSocket::RecievePayload  Error in receiving payload information", TEST_INTERFACE);
        return nullptr;
    }
    auto payload = std::make_unique<PayloadContainer>(length);
    payload->SetReceived({bytes.get(), bytes.get() + received});
    return payload;
}

StdString TCPSocket::ReceiveString() {
    char text[MaxStringSize + 1] = {};
    if (read(NumberOf(Hold()), text, MaxStringSize) == -1) {
        ReportError("TCpSocket::ReceiveString Error in receiving String", TEST_INTERFACE);
        return "NULL";
    }
    return text;
}

bool TCPSocket::SendCommand(const CommunicationsCommand* command) {
    return command != nullptr && SendBytes(command->GetImage().data(), CommunicationsCommand::Size,
                                           "TCPSocket::SendCommand  Error in sending header information");
}

bool TCPSocket::SendPayload(PayloadContainer* payload) {
    if (payload == nullptr) {
        return true;
    }
    const std::vector<std::uint8_t>& wire = payload->WireForm();
    return SendBytes(wire.data(), wire.size(), "TCPSocket::SendPayload  Error in sending payload information");
}

bool TCPSocket::Send(const CommunicationsCommand* command, PayloadContainer* payload) {
    const bool isCommandSent = SendCommand(command);
    const bool isPayloadSent = SendPayload(payload);
    return isCommandSent && isPayloadSent;
}

bool TCPSocket::SendString(const StdString& text) {
    const std::string& bytes = text.Text();
    if (write(NumberOf(Hold()), bytes.data(), bytes.size()) == -1) {
        return ReportError("TCPSocket::SendCommand Error in sending header information", TEST_INTERFACE);
    }
    return true;
}

// A closed test server is an error in the log and must not end the analyzer.
bool TCPSocket::SendBytes(const std::uint8_t* bytes, std::size_t size, const char* failure) {
    if (send(NumberOf(Hold()), bytes, size, MSG_NOSIGNAL) == -1) {
        return ReportError(failure, TEST_INTERFACE);
    }
    return true;
}
