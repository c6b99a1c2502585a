#include "Frameworks/IPC/Networking/Socket.h"

#include <arpa/inet.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <utility>

#include "Frameworks/Utilities/Report.h"

namespace {

bool Succeeded(int result, const char* failure) {
    if (result == -1) {
        return ReportError(failure, TEST_INTERFACE);
    }
    return true;
}

sockaddr_in AnyAddress(std::int32_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

// Wakes the threads in a call on the descriptor. The caller then releases it; the last of them closes it.
bool ShutDown(const HeldDescriptor& descriptor) {
    return descriptor == nullptr ||
           Succeeded(shutdown(descriptor->Number(), SHUT_RDWR), "Socket::CloseConnection Failure Shutting down socket");
}

}  // namespace

Socket::Socket() { m_state.address = AnyAddress(-1); }

Socket::Socket(std::int32_t port) : Socket() { SetPortNumber(port); }

Socket::Socket(const Socket& other) : m_state(other.GetState()) {}

Socket& Socket::operator=(const Socket& other) {
    State state = other.GetState();  // takes the old state, which is freed without a lock: closing may take long
    const MutexLock lock(m_mutex);
    std::swap(m_state, state);
    return *this;
}

Socket::State Socket::GetState() const {
    const MutexLock lock(m_mutex);
    return m_state;
}

bool Socket::SetReuseAddr(bool on) {
    return SetNumber(SO_REUSEADDR, on ? 1 : 0, "Socket::SetReuseAddr Failure in setsockopt SO_REUSEADDR");
}

bool Socket::SetKeepAlive(bool on) {
    return SetNumber(SO_KEEPALIVE, on ? 1 : 0, "Socket::SetKeepAlive Failure in setsockopt SO_KEEPALIVE");
}

bool Socket::SetLingerSeconds(std::int32_t seconds) {
    const linger value{seconds > 0 ? 1 : 0, seconds > 0 ? seconds : 0};
    return SetOption(SO_LINGER, &value, sizeof value, "Socket::SetLingerSeconds Failure in setsockopt SO_LINGER");
}

bool Socket::SetLingerOnOff(bool on) {
    const linger value{on ? 1 : 0, 0};
    return SetOption(SO_LINGER, &value, sizeof value, "Socket::SetLingerOnOff Failure in setsockopt SO_LINGER");
}

bool Socket::SetSendBufSize(std::int32_t bytes) {
    return SetNumber(SO_SNDBUF, bytes, "Socket::SetSendBufSize Failure in setsockopt SO_SNDBUF");
}

bool Socket::SetReceiveBufSize(std::int32_t bytes) {
    return SetNumber(SO_RCVBUF, bytes, "Socket::SetReceiveBufSize Failure in setsockopt SO_RCVBUF");
}

bool Socket::SetSocketBlocking(std::int32_t blocking) {
    const HeldDescriptor descriptor = Hold();
    const MutexLock lock(m_mutex);
    if (blocking == m_state.blocking) {
        return true;
    }
    m_state.blocking = m_state.blocking == 0 ? 1 : 0;
    int flag = m_state.blocking;
    return Succeeded(ioctl(NumberOf(descriptor), FIONBIO, &flag), "Socket::SetSocketBlocking Failure in ioctl FIONBIO");
}

std::int32_t Socket::GetReuseAddr() const {
    return GetNumber(SO_REUSEADDR, "Socket::GetReuseAddr Failure in getsockopt SO_REUSEADDR");
}

std::int32_t Socket::GetKeepAlive() const {
    return GetNumber(SO_KEEPALIVE, "Socket::GetKeepAlive Failure in getsockopt SO_KEEPALIVE");
}

std::int32_t Socket::GetLingerSeconds() const {
    linger value{};
    return GetLinger(value, "Socket::GetLingerSeconds Failure in getsockopt SO_LINGER") ? value.l_linger : -1;
}

std::int32_t Socket::GetLingerOnOff() const {
    linger value{};
    return GetLinger(value, "Socket::GetLingerOnOff Failure in getsockopt SO_LINGER") ? value.l_onoff : -1;
}

std::int32_t Socket::GetSendBufSize() const {
    return GetNumber(SO_SNDBUF, "Socket::GetSendBufSize Failure in getsockopt SO_SNDBUFSO");
}

std::int32_t Socket::GetReceiveBufSize() const {
    return GetNumber(SO_RCVBUF, "Socket::GetReceiveBufSize Failure in getsockopt SO_RCVBUF");
}

bool Socket::SetPortNumber(std::int32_t port) {
    CloseConnection();
    const MutexLock lock(m_mutex);
    m_state.port = port;
    const int number = m_closedForGood ? -1 : socket(AF_INET, SOCK_STREAM, 0);
    if (number != -1) {
        m_state.descriptor = std::make_shared<SharedDescriptor>(number);
    }
    m_state.address = AnyAddress(port);
    return Succeeded(number, "Socket::SetPortNumber Unable to create Socket");
}

std::int32_t Socket::GetPortNumber() const { return GetState().port; }

std::int32_t Socket::GetDescriptor() const { return NumberOf(Hold()); }

std::int32_t Socket::GetBlocking() const { return GetState().blocking; }

sockaddr_in Socket::GetAddress() const { return GetState().address; }

bool Socket::CloseConnection() { return ShutDown(Take(false)); }

bool Socket::CloseForGood() { return ShutDown(Take(true)); }

HeldDescriptor Socket::Hold() const {
    const std::shared_ptr<SharedDescriptor> descriptor = GetState().descriptor;
    return descriptor == nullptr ? nullptr : descriptor->Hold();
}

// Returns the open descriptor, for a shutdown without the lock.
HeldDescriptor Socket::Take(bool forGood) {
    const MutexLock lock(m_mutex);
    m_closedForGood = m_closedForGood || forGood;
    m_state.port = -1;
    m_state.blocking = 1;
    return m_state.descriptor == nullptr ? nullptr : m_state.descriptor->Take();
}

bool Socket::SetOption(int option, const void* value, socklen_t size, const char* failure) {
    return Succeeded(setsockopt(NumberOf(Hold()), SOL_SOCKET, option, value, size), failure);
}

bool Socket::SetNumber(int option, std::int32_t value, const char* failure) {
    return SetOption(option, &value, sizeof value, failure);
}

std::int32_t Socket::GetNumber(int option, const char* failure) const {
    std::int32_t value = 0;
    socklen_t size = sizeof value;
    return Succeeded(getsockopt(NumberOf(Hold()), SOL_SOCKET, option, &value, &size), failure) ? value : -1;
}

bool Socket::GetLinger(linger& value, const char* failure) const {
    socklen_t size = sizeof value;
    return Succeeded(getsockopt(NumberOf(Hold()), SOL_SOCKET, SO_LINGER, &value, &size), failure);
}
