// An IPv4 stream socket. Copies share the descriptor: CloseConnection of any copy closes it, or the destructor of the
// last one. Any thread may call any operation; closing wakes a thread that is blocked in a call on the descriptor. On
// failure an operation returns false or -1 and logs one line.
#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <memory>

#include "Frameworks/IPC/Networking/SharedDescriptor.h"

class Socket {
public:
    Socket();
    explicit Socket(std::int32_t port);
    Socket(const Socket& other);
    Socket& operator=(const Socket& other);
    virtual ~Socket() = default;

    // Socket options, by their names.
    bool SetReuseAddr(bool on);
    bool SetKeepAlive(bool on);
    bool SetLingerSeconds(std::int32_t seconds);  // 0 or less turns lingering off
    bool SetLingerOnOff(bool on);                 // SetLingerSeconds must follow and sets the time
    bool SetSendBufSize(std::int32_t bytes);
    bool SetReceiveBufSize(std::int32_t bytes);
    // If the flag differs from the stored one (1 at first), the stored one is flipped and passed to the system as its
    // switch for NOT blocking: a socket that was set to 0 and to 1 again no longer blocks.
    bool SetSocketBlocking(std::int32_t blocking);

    // As the kernel reports them; its buffer size may differ from the one set.
    std::int32_t GetReuseAddr() const;
    std::int32_t GetKeepAlive() const;
    std::int32_t GetLingerSeconds() const;
    std::int32_t GetLingerOnOff() const;
    std::int32_t GetSendBufSize() const;
    std::int32_t GetReceiveBufSize() const;

    bool SetPortNumber(std::int32_t port);  // closes an open socket and makes a new one for that port
    std::int32_t GetPortNumber() const;     // -1: none
    std::int32_t GetDescriptor() const;     // -1: closed
    std::int32_t GetBlocking() const;       // the stored flag
    sockaddr_in GetAddress() const;         // any of this host, with the port

    // Shuts down both directions and closes; true also if nothing was open.
    bool CloseConnection();
    // Also makes each later SetPortNumber fail, so that another thread can end the owner's.
    bool CloseForGood();

protected:
    // For the duration of a call; null if the socket is closed.
    HeldDescriptor Hold() const;

private:
    bool SetOption(int option, const void* value, socklen_t size, const char* failure);
    bool SetNumber(int option, std::int32_t value, const char* failure);
    std::int32_t GetNumber(int option, const char* failure) const;
    bool GetLinger(linger& value, const char* failure) const;
    HeldDescriptor Take(bool forGood);

    struct State {
        std::int32_t port = -1;
        std::shared_ptr<SharedDescriptor> descriptor;  // null if there never was one
        std::int32_t blocking = 1;
        sockaddr_in address{};
    };

    State GetState() const;

    mutable Mutex m_mutex;
    State m_state GUARDED_BY(m_mutex);
    bool m_closedForGood GUARDED_BY(m_mutex) = false;
};
