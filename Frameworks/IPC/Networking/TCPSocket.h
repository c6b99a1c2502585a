// The client's end of a TCP connection. Any thread may write and close while one reads. Frames are small and arrive
// whole: each read is one call, and missing bytes stay zero.
#pragma once

#include <atomic>
#include <memory>

#include "Frameworks/IPC/Networking/CommunicationsCommand.h"
#include "Frameworks/IPC/Networking/PayloadContainer.h"
#include "Frameworks/IPC/Networking/Socket.h"

class TCPSocket : public Socket {
public:
    TCPSocket() = default;
    explicit TCPSocket(std::int32_t port) : Socket(port) {}
    TCPSocket(const TCPSocket& other) : Socket(other), m_connected(other.m_connected.load()) {}
    TCPSocket& operator=(const TCPSocket& other);

    // The host as for HostInfo, at the port of SetPortNumber. Blocks until the system has connected or failed.
    virtual bool ConnectToServer(const StdString& host, std::int32_t hostType);
    // The result of the last ConnectToServer, unchanged by a close.
    bool IsConnected() const { return m_connected; }

    // Block until data arrive. Null if the connection failed and, for a header, if the server closed it.
    std::unique_ptr<CommunicationsCommand> RecieveCommand();
    std::unique_ptr<PayloadContainer> RecievePayload(std::uint32_t length);
    // Up to 1024 bytes, to the first zero byte; empty at the end of the connection, "NULL" if it failed.
    StdString ReceiveString();

    // One call each. They fail on a connection that the server has closed.
    bool SendCommand(const CommunicationsCommand* command);  // false for null
    bool SendPayload(PayloadContainer* payload);             // true for null
    bool Send(const CommunicationsCommand* command, PayloadContainer* payload);
    // Such a connection ends the process by SIGPIPE, which has no handler.
    bool SendString(const StdString& text);

private:
    bool SendBytes(const std::uint8_t* bytes, std::size_t size, const char* failure);

    std::atomic<bool> m_connected{false};
};
