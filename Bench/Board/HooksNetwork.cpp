// Sockets of the program. They are the machine's own, but lead only where the board lets them, fail on command and can
// be cut after a number of bytes. A socket that is bound serves somebody else, a peer in a test's own process.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
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

int Refuse(int error) {
    errno = error;
    return -1;
}

// Once for each cut; afterwards the socket is one that has been shut down.
bool TellCut(int file) {
    if (SocketCut(file) != Cut::Pending) {
        return false;
    }
    SetSocketCut(file, Cut::Told);
    errno = ECONNRESET;
    return true;
}

void CutLink(int file) {
    SetSocketCut(file, Cut::Pending);
    Real::shutdown(file, SHUT_RDWR);
}

// Takes the connection's place on this machine in `address`; 0 or an error number.
int Lead(const BoardState& state, sockaddr_in& address) {
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
        error = CountCall(state, Call::Connect);
        error = error == 0 ? Lead(state, address) : error;
    }
    const bool done =
        error == 0 && Real::connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    error = done || error != 0 ? error : errno;
    const int port = ntohs(asked.sin_port);
    RememberFile(file, SocketNode(port), O_RDWR);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &asked.sin_addr, text, sizeof(text));
    const BoardLock lock(state);
    TraceAct(state, "connect %s:%d%s%s", text, port, done ? "" : " !", done ? "" : ErrorName(error));
    return done ? 0 : Refuse(error);
}

// The board where the file is a socket of the program; null sends the call on.
BoardState* BoardOf(int file) { return FileNode(file).family == Family::Socket ? AttachedState() : nullptr; }

bool FailsBy(BoardState* state, Call call) { return state != nullptr && CountOrFail(*state, call) != 0; }

}  // namespace

ssize_t ReceiveBytes(BoardState& state, int file, Node node, Call call, void* data, std::size_t size, int flags) {
    if (CountOrFail(state, call) != 0) {
        return -1;
    }
    std::uint64_t length = 0;
    {
        const BoardLock lock(state);
        length = LinkLength(state, PortOf(node));
    }
    const std::uint64_t before = SocketReceived(file);
    if (before >= length && SocketCut(file) == Cut::Whole) {
        CutLink(file);
    }
    if (TellCut(file)) {
        return -1;
    }
    const bool cut = SocketCut(file) != Cut::Whole;
    const std::size_t most = cut ? size : static_cast<std::size_t>(std::min<std::uint64_t>(size, length - before));
    const ssize_t got = Real::recv(file, data, most, flags);
    if (got > 0 && (flags & MSG_PEEK) == 0) {
        AddSocketReceived(file, static_cast<std::uint64_t>(got));
        if (SocketReceived(file) >= length) {
            CutLink(file);
        }
    }
    return got;
}

ssize_t SendBytes(BoardState& state, int file, Call call, const void* data, std::size_t size, int flags) {
    if (CountOrFail(state, call) != 0 || TellCut(file)) {
        return -1;
    }
    return Real::send(file, data, size, flags);
}

}  // namespace Bench

using namespace Bench;

// The names are those of libc.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int socket(int domain, int type, int protocol) noexcept {
    BoardState* state = domain == AF_INET ? AttachedState() : nullptr;
    if (FailsBy(state, Call::Socket)) {
        return -1;
    }
    const int file = Real::socket(domain, type, protocol);
    if (state != nullptr && file >= 0) {
        RememberFile(file, SocketNode(0), O_RDWR);
    }
    return file;
}

int bind(int file, const sockaddr* address, socklen_t size) noexcept {
    if (FileNode(file).family == Family::Socket) {
        ForgetFile(file);
    }
    return Real::bind(file, address, size);
}

int connect(int file, const sockaddr* address, socklen_t size) {
    BoardState* state = BoardOf(file);
    if (state == nullptr || size < sizeof(sockaddr_in) || address->sa_family != AF_INET) {
        return Real::connect(file, address, size);
    }
    sockaddr_in peer = {};
    std::memcpy(&peer, address, sizeof(peer));
    return Connect(*state, file, peer);
}

ssize_t send(int file, const void* data, size_t size, int flags) {
    BoardState* state = BoardOf(file);
    return state == nullptr ? Real::send(file, data, size, flags)
                            : SendBytes(*state, file, Call::Send, data, size, flags);
}

ssize_t recv(int file, void* data, size_t size, int flags) {
    BoardState* state = BoardOf(file);
    return state == nullptr ? Real::recv(file, data, size, flags)
                            : ReceiveBytes(*state, file, FileNode(file), Call::Receive, data, size, flags);
}

ssize_t __recv_chk(int file, void* data, size_t size, size_t space, int flags) {
    if (size > space) {
        std::abort();
    }
    return recv(file, data, size, flags);
}

int shutdown(int file, int how) noexcept {
    return FailsBy(BoardOf(file), Call::Shutdown) ? -1 : Real::shutdown(file, how);
}

int setsockopt(int file, int level, int option, const void* value, socklen_t size) noexcept {
    return FailsBy(BoardOf(file), Call::SetOption) ? -1 : Real::setsockopt(file, level, option, value, size);
}

int getsockopt(int file, int level, int option, void* value, socklen_t* size) noexcept {
    return FailsBy(BoardOf(file), Call::GetOption) ? -1 : Real::getsockopt(file, level, option, value, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
