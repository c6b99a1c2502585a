#include "Bench/Peers/LinkServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Bench {

namespace {

constexpr char OrderEnd = 'e';
constexpr char OrderClose = 'c';
constexpr std::size_t PieceSize = 65536;

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

bool BindAndListen(int listener, std::uint16_t port) {
    const int on = 1;
    const sockaddr_in address = Loopback(port);
    return setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
           bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 && listen(listener, 4) == 0;
}

std::uint16_t PortOf(int listener) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

void CloseIfOpen(int descriptor) {
    if (descriptor >= 0) {
        close(descriptor);
    }
}

}  // namespace

LinkServer::~LinkServer() {
    CloseIfOpen(m_connection);
    CloseIfOpen(m_listener);
    CloseIfOpen(m_wake[0]);
    CloseIfOpen(m_wake[1]);
}

bool LinkServer::Listen(std::uint16_t port, std::string& error) {
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_listener >= 0 && pipe2(m_wake, O_CLOEXEC) == 0 && BindAndListen(m_listener, port)) {
        m_port = PortOf(m_listener);
        return true;
    }
    const int reason = errno;
    error = "can't listen on port " + std::to_string(port) + ": " +
            (reason == EADDRINUSE ? "another program listens there" : std::strerror(reason));
    return false;
}

void LinkServer::Start() {
    m_thread = std::thread([this] { Serve(); });
}

void LinkServer::Stop() {
    if (m_thread.joinable()) {
        Wake(OrderEnd);
        m_thread.join();
    }
}

bool LinkServer::IsConnected() const {
    const std::lock_guard lock(m_mutex);
    return m_connection >= 0;
}

std::size_t LinkServer::Connections() const {
    const std::lock_guard lock(m_mutex);
    return m_connections;
}

std::string LinkServer::Trouble() const {
    const std::lock_guard lock(m_mutex);
    return m_trouble;
}

bool LinkServer::Send(std::string_view bytes) {
    const std::lock_guard lock(m_mutex);
    return m_connection >= 0 && send(m_connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
                                    static_cast<ssize_t>(bytes.size());
}

void LinkServer::Disconnect() { Wake(OrderClose); }

void LinkServer::Abort() {
    {
        const std::lock_guard lock(m_mutex);
        const linger drop{1, 0};
        setsockopt(m_connection, SOL_SOCKET, SO_LINGER, &drop, sizeof drop);
    }
    Wake(OrderClose);
}

void LinkServer::Wake(char order) const {
    while (write(m_wake[1], &order, 1) < 0 && errno == EINTR) {
    }
}

void LinkServer::Serve() {
    for (;;) {
        pollfd files[] = {{m_wake[0], POLLIN, 0}, {m_listener, POLLIN, 0}, {m_connection, POLLIN, 0}};
        const nfds_t count = m_connection >= 0 ? 3 : 2;
        if (poll(files, count, -1) < 0) {
            continue;
        }
        char order = 0;
        if (files[0].revents != 0 && read(m_wake[0], &order, 1) == 1) {
            if (order == OrderEnd) {
                return;
            }
            Close();
            continue;
        }
        if (files[2].revents != 0) {
            Read();
        }
        if (files[1].revents != 0) {
            Accept();
        }
    }
}

void LinkServer::Accept() {
    const int connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) {
        return;
    }
    Close();
    const std::lock_guard lock(m_mutex);
    m_connection = connection;
    ++m_connections;
    m_trouble.clear();
    Begin();
    m_changed.notify_all();
}

void LinkServer::Read() {
    char piece[PieceSize];
    const ssize_t length = recv(m_connection, piece, sizeof piece, MSG_DONTWAIT);
    if (length < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    bool goesOn = length > 0;
    if (goesOn) {
        const std::lock_guard lock(m_mutex);
        goesOn = Receive({piece, static_cast<std::size_t>(length)}, m_trouble);
        m_changed.notify_all();
    }
    if (!goesOn) {
        Close();
    }
}

void LinkServer::Close() {
    const std::lock_guard lock(m_mutex);
    CloseIfOpen(m_connection);
    m_connection = -1;
    m_changed.notify_all();
}

}  // namespace Bench
