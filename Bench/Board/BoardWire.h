// The links of a run in exact time. Instead of the machine's sockets, the bytes are in the board's state: the program's
// calls read and write them, and a peer on the bench's side takes and gives them while the run is paused. A wire serves
// one connection at a time, the newest. Call under BoardLock unless stated.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Bench {

struct BoardState;
struct BoardFile;

constexpr std::size_t Wires = 4;
constexpr std::size_t DeliveriesKept = 256;
constexpr std::size_t DeliverySize = 1024;
constexpr std::size_t WireLength = std::size_t{1} << 18U;

enum class DeliveryKind : std::uint8_t { Bytes, End, Abort };

// What reaches the program at a moment of its monotonic clock.
struct Delivery {
    std::int64_t at;
    DeliveryKind kind;
    std::uint16_t size;
    std::uint16_t taken;
    char bytes[DeliverySize];
};

struct Wire {
    int port;                         // 0: free
    bool listens;                     // the peer does
    std::uint32_t connections;        // so far
    bool open;                        // the newest connection, by the program
    bool ended;                       // by the peer, as the program has seen
    bool aborted;                     // by the peer, not yet reported
    std::uint32_t sentAfterEnd;       // pieces
    std::atomic<std::uint32_t> word;  // futex: something changed
    std::uint64_t sent;               // bytes by the program, in all connections
    std::uint64_t taken;              // of these, by the peer
    std::uint64_t connectionStart;    // of `sent`, at the newest connection
    std::uint32_t firstDelivery;      // number of the oldest that is kept
    std::uint32_t deliveries;         // so far
    Delivery inbound[DeliveriesKept];
    char outbound[WireLength];
};

Wire* FindWire(BoardState& state, int port);  // null: there is none
void WireChanged(Wire& wire);

// The program's end. Not under the lock. They return as the system call does and set errno.
int ConnectWire(const BoardFile& socket, Wire& wire);  // 0 or an error number
ssize_t ReceiveFromWire(const BoardFile& socket, void* data, std::size_t size, int flags);
ssize_t SendToWire(const BoardFile& socket, const void* data, std::size_t size, int flags);
int ShutDownWire(const BoardFile& socket);

}  // namespace Bench
