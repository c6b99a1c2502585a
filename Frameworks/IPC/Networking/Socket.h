// An IPv4 stream socket. A copy shares the descriptor: it is closed by CloseConnection of any of them, or when the last
// of them goes. Every operation may be called from any thread; closing wakes a thread that is blocked in a call on the
// descriptor. A failure is a false or a -1 and one line in the log.
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

    // The options of the kernel, by their names.
    bool SetReuseAddr(bool on);
    bool SetKeepAlive(bool on);
    bool SetLingerSeconds(std::int32_t seconds);  // 0 or less turns lingering off
    bool SetLingerOnOff(bool on);                 // the time is that of the SetLingerSeconds that has to follow
    bool SetSendBufSize(std::int32_t bytes);
    bool SetReceiveBufSize(std::int32_t bytes);
    // Where the flag differs from the stored one, which starts at 1, that one is flipped and given to the system as its
    // switch for NOT blocking: a socket that was marked 0 and is marked 1 again no longer blocks.
    bool SetSocketBlocking(std::int32_t blocking);

    // As the kernel has them; it may answer with another buffer size than was set.
    std::int32_t GetReuseAddr() const;
    std::int32_t GetKeepAlive() const;
    std::int32_t GetLingerSeconds() const;
    std::int32_t GetLingerOnOff() const;
    std::int32_t GetSendBufSize() const;
    std::int32_t GetReceiveBufSize() const;

    bool SetPortNumber(std::int32_t port);  // closes what was open, and makes a new socket for that port
    std::int32_t GetPortNumber() const;     // -1: none
    std::int32_t GetDescriptor() const;     // -1: closed
    std::int32_t GetBlocking() const;       // the flag as it is stored
    sockaddr_in GetAddress() const;         // any of this host, with the port

    // Ends both directions and closes; true where nothing was open.
    bool CloseConnection();
    // For the end of a thread that another one ends: no later SetPortNumber opens anything.
    bool CloseForGood();

protected:
    // For the length of a call; null where the socket is closed.
    HeldDescriptor Hold() const;

private:
    bool SetOption(int option, const void* value, socklen_t size, const char* failure);
    bool SetNumber(int option, std::int32_t value, const char* failure);
    std::int32_t GetNumber(int option, const char* failure) const;
    bool GetLinger(linger& value, const char* failure) const;
    HeldDescriptor Take(bool forGood);

    struct State {
        std::int32_t port = -1;
        std::shared_ptr<SharedDescriptor> descriptor;  // null where there never was one
        std::int32_t blocking = 1;
        sockaddr_in address{};
    };

    State GetState() const;

    mutable Mutex m_mutex;
    State m_state GUARDED_BY(m_mutex);
    bool m_closedForGood GUARDED_BY(m_mutex) = false;
};
