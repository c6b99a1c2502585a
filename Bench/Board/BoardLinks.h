// The network and the sound tools as the board sees them. Call under BoardLock unless stated.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace Bench {

struct BoardState;

// ---- Network.
constexpr std::size_t MaxPorts = 16;
constexpr std::size_t HostNameLength = 64;
constexpr int MaxPort = 65535;

struct PortEntry {
    int instrument = 0;  // 0: free
    int real = 0;
};

struct NetworkState {
    PortEntry ports[MaxPorts];
    bool open = false;  // ports that are not mapped are reached unchanged
    char hostName[HostNameLength + 1] = "analyzer";
};

// The machine's port for the program's connection to that port of the loopback interface; 0 to refuse it.
int RealPort(const BoardState& state, int port);

// ---- Sound.
constexpr std::size_t SoundCallsKept = 512;
constexpr std::size_t SoundLineLength = 256;
constexpr std::size_t MaxPlayers = 16;

// Children of a program in exact time have numbers from here on, which no process of a machine has.
constexpr pid_t FirstVirtualProcess = 1 << 22;

// A clip plays until its end, so a player that is killed leaves nothing to clean up.
struct PlayerEntry {
    std::int64_t ends = 0;
    std::uint64_t number = 0;
    pid_t loop = 0;  // the forked child that started it; 0: none
    char name[64] = {};
};

struct SoundState {
    PlayerEntry players[MaxPlayers];
    std::uint64_t played = 0;
    std::uint64_t called = 0;   // in the whole run
    std::uint64_t cleared = 0;  // number of the first call that is kept
    char calls[SoundCallsKept][SoundLineLength] = {};
};

void NoteSoundCall(BoardState& state, const char* line);
bool SoundPlays(const BoardState& state);
// Returns when the clip or the run has ended. Not under the lock. `loop`: the forked child that asked for it, or 0.
void PlayClip(BoardState& state, const char* name, std::int64_t nanoSeconds, pid_t loop);

}  // namespace Bench
