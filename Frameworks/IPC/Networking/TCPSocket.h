// The client's end of a TCP connection. Any thread may write and close while one reads. Frames are small and come in
// one piece: a read is a single call, and what it didn't bring stays zero.
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

    // The host as HostInfo takes it, at the port given to SetPortNumber. Blocks until the system knows.
    virtual bool ConnectToServer(const StdString& host, std::int32_t hostType);
    // What the last ConnectToServer said: a close leaves it.
    bool IsConnected() const { return m_connected; }

    // Block until something comes. Null where the connection failed and, for a header, where the server closed it.
    std::unique_ptr<CommunicationsCommand> RecieveCommand();
    std::unique_ptr<PayloadContainer> RecievePayload(std::uint32_t length);
    // Up to 1024 bytes, to the first zero byte; empty at the end of the connection, "NULL" where it failed.
    StdString ReceiveString();

    // One call each. A connection that the server has closed fails them.
    bool SendCommand(const CommunicationsCommand* command);  // false for none
    bool SendPayload(PayloadContainer* payload);             // true for none
    bool Send(const CommunicationsCommand* command, PayloadContainer* payload);
    // Here such a connection ends the process by SIGPIPE, for which no handler is installed.
    bool SendString(const StdString& text);

private:
    bool SendBytes(const std::uint8_t* bytes, std::size_t size, const char* failure);

    std::atomic<bool> m_connected{false};
};
