#include "Bench/Board/BoardWire.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/BoardState.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

int PortOf(Node node) { return node.first << 8 | node.second; }

bool IsNewest(const BoardFile& socket, const Wire& wire) {
    return wire.open && socket.open->connection.load() == wire.connections;
}

void CopyOut(Wire& wire, const char* data, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        const auto place = static_cast<std::size_t>(wire.sent % WireLength);
        const std::size_t piece = std::min(size - done, WireLength - place);
        std::memcpy(wire.outbound + place, data + done, piece);
        wire.sent += piece;
        done += piece;
    }
}

// The delivery that is due; null if there is none.
Delivery* Due(Wire& wire, std::int64_t now) {
    Delivery* next =
        wire.firstDelivery == wire.deliveries ? nullptr : &wire.inbound[wire.firstDelivery % DeliveriesKept];
    return next != nullptr && next->at <= now ? next : nullptr;
}

// Ends of the connection that are due. Returns the bytes that are, or null.
Delivery* TakeEnds(Wire& wire, std::int64_t now) {
    Delivery* due = Due(wire, now);
    for (; due != nullptr && due->kind != DeliveryKind::Bytes; due = Due(wire, now)) {
        wire.ended = true;
        wire.aborted = due->kind == DeliveryKind::Abort;
        ++wire.firstDelivery;
    }
    return wire.ended ? nullptr : due;
}

// What a call receives at this moment, or -EAGAIN.
ssize_t ReceiveNow(const BoardFile& socket, Wire& wire, std::int64_t now, void* data, std::size_t size, bool keep) {
    if (!IsNewest(socket, wire)) {
        return 0;
    }
    Delivery* due = TakeEnds(wire, now);
    if (wire.aborted) {
        wire.aborted = false;
        return -ECONNRESET;
    }
    if (wire.ended || size == 0) {
        return 0;
    }
    if (due == nullptr) {
        return -EAGAIN;
    }
    const std::size_t piece = std::min<std::size_t>(size, due->size - due->taken);
    std::memcpy(data, due->bytes + due->taken, piece);
    due->taken = static_cast<std::uint16_t>(due->taken + (keep ? 0 : piece));
    wire.firstDelivery += due->taken == due->size ? 1 : 0;
    return static_cast<ssize_t>(piece);
}

bool IsNonBlocking(const BoardFile& socket, int flags) {
    return (flags & MSG_DONTWAIT) != 0 || (Real::fcntl(socket.file, F_GETFL) & O_NONBLOCK) != 0;
}

std::int64_t UntilNext(const Wire& wire, std::int64_t now) {
    return wire.firstDelivery == wire.deliveries ? WithoutEnd
                                                 : wire.inbound[wire.firstDelivery % DeliveriesKept].at - now;
}

// As the kernel: the peer's end of the connection shows with the second piece, since it answers the first with a reset.
bool IsBroken(const BoardFile& socket, Wire& wire, std::int64_t now) {
    if (!IsNewest(socket, wire)) {
        return true;
    }
    TakeEnds(wire, now);
    return wire.ended && wire.sentAfterEnd++ > 0;
}

}  // namespace

Wire* FindWire(BoardState& state, int port) {
    auto* const end = std::end(state.wires);
    auto* const wire =
        std::find_if(std::begin(state.wires), end, [port](const Wire& each) { return each.port == port; });
    return wire == end ? nullptr : wire;
}

void WireChanged(Wire& wire) {
    wire.word.fetch_add(1);
    FutexWakeAll(wire.word);
}

int ConnectWire(const BoardFile& socket, Wire& wire) {
    const BoardLock state(*socket.state);
    if (!wire.listens) {
        return ECONNREFUSED;
    }
    ++wire.connections;
    wire.open = true;
    wire.ended = wire.aborted = false;
    wire.sentAfterEnd = 0;
    wire.firstDelivery = wire.deliveries;
    wire.connectionStart = wire.sent;
    socket.open->connection.store(wire.connections);
    state->exact.pauseAsked = true;
    WireChanged(wire);
    return 0;
}

ssize_t ReceiveFromWire(const BoardFile& socket, void* data, std::size_t size, int flags) {
    for (;;) {
        std::uint32_t seen = 0;
        std::int64_t wait = 0;
        const Wire* wire = nullptr;
        {
            const BoardLock state(*socket.state);
            Wire* const found = FindWire(*state, PortOf(socket.node));
            const std::int64_t now = MonotonicNow(state->clock);
            if (found == nullptr || socket.open->connection.load() == 0) {
                return Answer<ssize_t>(ENOTCONN);
            }
            const ssize_t got = ReceiveNow(socket, *found, now, data, size, (flags & MSG_PEEK) != 0);
            if (got != -EAGAIN || IsNonBlocking(socket, flags)) {
                return got >= 0 ? got : Answer<ssize_t>(static_cast<int>(-got));
            }
            wire = found;
            seen = found->word.load();
            wait = UntilNext(*found, now);
        }
        FutexWait(wire->word, seen, wait);
    }
}

ssize_t SendToWire(const BoardFile& socket, const void* data, std::size_t size, int flags) {
    {
        const BoardLock state(*socket.state);
        Wire* wire = FindWire(*state, PortOf(socket.node));
        if (wire != nullptr && socket.open->connection.load() != 0 &&
            !IsBroken(socket, *wire, MonotonicNow(state->clock))) {
            const auto unread = static_cast<std::size_t>(wire->sent - wire->taken);
            const std::size_t piece = std::min(size, WireLength - unread);
            CopyOut(*wire, static_cast<const char*>(data), wire->ended ? 0 : piece);
            state->exact.pauseAsked = true;
            WireChanged(*wire);
            return static_cast<ssize_t>(wire->ended ? size : piece);
        }
    }
    if ((flags & MSG_NOSIGNAL) == 0) {
        raise(SIGPIPE);
    }
    return Answer<ssize_t>(EPIPE);
}

int ShutDownWire(const BoardFile& socket) {
    const BoardLock state(*socket.state);
    Wire* wire = FindWire(*state, PortOf(socket.node));
    if (wire == nullptr || !IsNewest(socket, *wire)) {
        return Answer(ENOTCONN);
    }
    wire->open = false;
    state->exact.pauseAsked = true;
    WireChanged(*wire);
    return 0;
}

// ---- The bench's end.

bool Board::LayWire(int port) {
    const BoardLock state(*m_state);
    Wire* wire = FindWire(*state, port);
    wire = wire == nullptr ? FindWire(*state, 0) : wire;
    if (wire != nullptr) {
        wire->port = port;
        wire->listens = true;
    }
    return wire != nullptr;
}

WireView Board::TakeFromWire(int port) {
    const BoardLock state(*m_state);
    WireView view;
    if (Wire* wire = FindWire(*state, port); wire != nullptr) {
        view.connections = wire->connections;
        view.connected = wire->open && !wire->ended;
        wire->taken = std::max(wire->taken, wire->connectionStart);
        for (; wire->taken < wire->sent; ++wire->taken) {
            view.bytes += wire->outbound[wire->taken % WireLength];
        }
    }
    return view;
}

bool Board::GiveToWire(int port, std::string_view bytes, double seconds) {
    return Deliver(port, static_cast<int>(DeliveryKind::Bytes), bytes, seconds);
}

bool Board::EndWire(int port, bool abort, double seconds) {
    return Deliver(port, static_cast<int>(abort ? DeliveryKind::Abort : DeliveryKind::End), "", seconds);
}

bool Board::Deliver(int port, int kind, std::string_view bytes, double seconds) {
    const BoardLock state(*m_state);
    Wire* wire = FindWire(*state, port);
    const std::size_t pieces = std::max<std::size_t>(1, (bytes.size() + DeliverySize - 1) / DeliverySize);
    if (wire == nullptr || !wire->open || wire->deliveries - wire->firstDelivery + pieces > DeliveriesKept) {
        return false;
    }
    const std::int64_t at = MonotonicNow(state->clock) + static_cast<std::int64_t>(seconds * 1e9);
    for (std::size_t i = 0; i < pieces; ++i, ++wire->deliveries) {
        Delivery& delivery = wire->inbound[wire->deliveries % DeliveriesKept];
        const std::string_view piece = bytes.substr(std::min(bytes.size(), i * DeliverySize), DeliverySize);
        delivery = {at, static_cast<DeliveryKind>(kind), static_cast<std::uint16_t>(piece.size()), 0, {}};
        std::memcpy(delivery.bytes, piece.data(), piece.size());
    }
    WireChanged(*wire);
    return true;
}

}  // namespace Bench
