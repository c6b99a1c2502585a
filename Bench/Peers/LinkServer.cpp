#include "Bench/Peers/LinkServer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Bench {

namespace {

constexpr std::size_t PieceSize = 65536;

// Binds the socket and listens. Returns the port, or 0 with errno set.
std::uint16_t BindAndListen(int listener, std::uint16_t port) {
    const int on = 1;
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    auto* const bytes = reinterpret_cast<sockaddr*>(&address);
    const bool done = setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
                      bind(listener, bytes, size) == 0 && listen(listener, 4) == 0 &&
                      getsockname(listener, bytes, &size) == 0;
    return done ? ntohs(address.sin_port) : std::uint16_t{0};
}

}  // namespace

LinkServer::~LinkServer() {
    Close();
    if (m_listener >= 0) {
        close(m_listener);
    }
}

bool LinkServer::Listen(std::uint16_t port, std::string& error) {
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    m_port = m_listener < 0 ? std::uint16_t{0} : BindAndListen(m_listener, port);
    if (m_port == 0) {
        const int reason = errno;
        error = "can't listen on port " + std::to_string(port) + ": " +
                (reason == EADDRINUSE ? "another program listens there" : std::strerror(reason));
    }
    return m_port != 0;
}

void LinkServer::Start() {
    m_thread = std::thread([this] { Serve(); });
}

void LinkServer::Stop() {
    if (m_thread.joinable()) {
        m_stops = true;
        shutdown(m_listener, SHUT_RDWR);  // wakes the thread
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

std::string LinkServer::CutReason() const {
    const std::lock_guard lock(m_mutex);
    return m_cutReason;
}

bool LinkServer::Send(std::string_view bytes) {
    const std::lock_guard lock(m_mutex);
    if (m_wire != nullptr) {
        return m_connection >= 0 && m_wire->Send(bytes);
    }
    return m_connection >= 0 && send(m_connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
                                    static_cast<ssize_t>(bytes.size());
}

void LinkServer::Disconnect() { CloseSoon(false); }
void LinkServer::Abort() { CloseSoon(true); }

void LinkServer::CloseSoon(bool aborts) {
    const std::lock_guard lock(m_mutex);
    if (m_wire != nullptr) {
        m_wire->End(aborts);
        return;
    }
    const linger drop{aborts ? 1 : 0, 0};
    setsockopt(m_connection, SOL_SOCKET, SO_LINGER, &drop, sizeof drop);
    m_closes = true;
    shutdown(m_connection, SHUT_RD);  // wakes the thread; the peer does not notice
}

void LinkServer::Poll() {
    const std::lock_guard lock(m_mutex);
    const PeerWire::View view = m_wire->Take();
    if (view.connections != m_connections) {
        m_connections = view.connections;
        m_cutReason.clear();
        Begin();
    }
    m_connection = view.connected ? 0 : -1;
    if (!view.bytes.empty() && !Receive(view.bytes, m_cutReason)) {
        m_wire->End(false);
    }
}

void LinkServer::Serve() {
    while (!m_stops) {
        pollfd files[] = {{m_listener, POLLIN, 0}, {m_connection, POLLIN, 0}};
        if (poll(files, 2, -1) < 0) {
            continue;
        }
        if (files[1].revents != 0) {
            Read();
        }
        if (files[0].revents != 0) {
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
    m_cutReason.clear();
    Begin();
    m_changed.notify_all();
}

void LinkServer::Read() {
    char piece[PieceSize];
    const ssize_t length = recv(m_connection, piece, sizeof piece, MSG_DONTWAIT);
    if (length < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    bool goesOn = false;
    {
        const std::lock_guard lock(m_mutex);
        goesOn = !m_closes && length > 0 && Receive({piece, static_cast<std::size_t>(length)}, m_cutReason);
        m_changed.notify_all();
    }
    if (!goesOn) {
        Close();
    }
}

void LinkServer::Close() {
    const std::lock_guard lock(m_mutex);
    if (m_connection >= 0 && m_wire == nullptr) {
        close(m_connection);
    }
    m_connection = -1;
    m_closes = false;
    m_changed.notify_all();
}

}  // namespace Bench
