// Sockets of the program. They are the machine's own, but reach only what the board allows, fail on command and can be
// cut after a number of bytes. A socket that is bound is not the program's: it belongs to a peer in a test's process.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

int PortOf(Node node) { return node.first << 8 | node.second; }

Node SocketNode(int port) {
    return {Family::Socket, 0, static_cast<std::uint8_t>(port >> 8), static_cast<std::uint8_t>(port & 0xFF)};
}

// ECONNRESET once for each cut, else 0. Afterwards the socket acts as one that has been shut down.
int CutError(const BoardFile& socket) {
    Cut pending = Cut::Pending;
    return socket.open->cut.compare_exchange_strong(pending, Cut::Reported) ? ECONNRESET : 0;
}

int ShutDown(const BoardFile& socket, int how) {
    return socket.state->exact.wanted ? ShutDownWire(socket) : Real::shutdown(socket.file, how);
}

void CutLink(const BoardFile& socket) {
    socket.open->cut.store(Cut::Pending);
    ShutDown(socket, SHUT_RDWR);
}

// Replaces the port in `address` by the connection's port on this machine. 0 or an error number.
int Redirect(const BoardState& state, sockaddr_in& address) {
    constexpr in_addr_t LoopbackNet = 127;
    const in_addr_t host = ntohl(address.sin_addr.s_addr);
    if (host >> 24U != LoopbackNet) {
        return ENETUNREACH;
    }
    const int port = host == INADDR_LOOPBACK ? RealPort(state, ntohs(address.sin_port)) : 0;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return port == 0 ? ECONNREFUSED : 0;
}

int Connect(BoardState& state, int file, const sockaddr_in& asked) {
    sockaddr_in address = asked;
    int error = 0;
    {
        const BoardLock lock(state);
        error = CountCall(state, "connect");
        error = error == 0 ? Redirect(state, address) : error;
    }
    const int port = ntohs(asked.sin_port);
    RememberFile(file, SocketNode(port), O_RDWR);
    Wire* wire = state.exact.wanted ? FindWire(state, port) : nullptr;
    if (wire != nullptr && (error == 0 || error == ECONNREFUSED)) {
        error = ConnectWire(FindSocket(file), *wire);
    } else if (error == 0 && Real::connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        error = errno;
    }
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &asked.sin_addr, text, sizeof(text));
    Trace(*BoardLock(state), error, "connect %s:%d", text, port);
    return Answer(error);
}

bool FailsByRequest(const BoardFile& socket, Call call) { return socket && CountOrFail(*socket.state, call) != 0; }

}  // namespace

ssize_t ReceiveBytes(const BoardFile& socket, Call call, void* data, std::size_t size, int flags) {
    if (CountOrFail(*socket.state, call) != 0) {
        return -1;
    }
    const std::uint64_t length = LinkLength(*BoardLock(*socket.state), PortOf(socket.node));
    const std::uint64_t before = socket.open->received.load();
    if (before >= length && socket.open->cut.load() == Cut::Whole) {
        CutLink(socket);
    }
    if (const int error = CutError(socket); error != 0) {
        return Answer<ssize_t>(error);
    }
    const bool cut = socket.open->cut.load() != Cut::Whole;
    const std::size_t most = cut ? size : static_cast<std::size_t>(std::min<std::uint64_t>(size, length - before));
    const ssize_t got = socket.state->exact.wanted ? ReceiveFromWire(socket, data, most, flags)
                                                   : Real::recv(socket.file, data, most, flags);
    if (got > 0 && (flags & MSG_PEEK) == 0) {
        socket.open->received.fetch_add(static_cast<std::uint64_t>(got));
        if (socket.open->received.load() >= length) {
            CutLink(socket);
        }
    }
    return got;
}

ssize_t SendBytes(const BoardFile& socket, Call call, const void* data, std::size_t size, int flags) {
    if (CountOrFail(*socket.state, call) != 0) {
        return -1;
    }
    const int error = CutError(socket);
    if (error != 0) {
        return Answer<ssize_t>(error);
    }
    return socket.state->exact.wanted ? SendToWire(socket, data, size, flags)
                                      : Real::send(socket.file, data, size, flags);
}

}  // namespace Bench

using namespace Bench;

extern "C" {

int socket(int domain, int type, int protocol) noexcept {
    BoardState* state = domain == AF_INET ? AttachedState() : nullptr;
    if (state != nullptr && CountOrFail(*state, "socket") != 0) {
        return -1;
    }
    const int file = Real::socket(domain, type, protocol);
    if (state != nullptr && file >= 0) {
        RememberFile(file, SocketNode(0), O_RDWR);
    }
    return file;
}

int bind(int file, const sockaddr* address, socklen_t size) noexcept {
    if (FindSocket(file)) {
        ForgetFile(file);
    }
    return Real::bind(file, address, size);
}

int connect(int file, const sockaddr* address, socklen_t size) {
    const BoardFile found = FindSocket(file);
    if (!found || size < sizeof(sockaddr_in) || address->sa_family != AF_INET) {
        return Real::connect(file, address, size);
    }
    sockaddr_in peer = {};
    std::memcpy(&peer, address, sizeof(peer));
    return Connect(*found.state, file, peer);
}

ssize_t send(int file, const void* data, size_t size, int flags) {
    const BoardFile found = FindSocket(file);
    return found ? SendBytes(found, "send", data, size, flags) : Real::send(file, data, size, flags);
}

ssize_t recv(int file, void* data, size_t size, int flags) {
    const BoardFile found = FindSocket(file);
    return found ? ReceiveBytes(found, "recv", data, size, flags) : Real::recv(file, data, size, flags);
}

ssize_t __recv_chk(int file, void* data, size_t size, size_t space, int flags) {
    if (size > space) {
        std::abort();
    }
    return recv(file, data, size, flags);
}

int shutdown(int file, int how) noexcept {
    const BoardFile found = FindSocket(file);
    if (FailsByRequest(found, "shutdown")) {
        return -1;
    }
    return found ? ShutDown(found, how) : Real::shutdown(file, how);
}

int setsockopt(int file, int level, int option, const void* value, socklen_t size) noexcept {
    return FailsByRequest(FindSocket(file), "setsockopt") ? -1 : Real::setsockopt(file, level, option, value, size);
}

int getsockopt(int file, int level, int option, void* value, socklen_t* size) noexcept {
    return FailsByRequest(FindSocket(file), "getsockopt") ? -1 : Real::getsockopt(file, level, option, value, size);
}
}
