// A run in exact time: what the bench asks for, and what the simulation in the program's process reports. The bench
// reads and changes the board only while the run is paused.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Bench {

enum class ExactPhase : std::uint32_t { Running, Paused, Over };

constexpr std::size_t PolicyLength = 64;
constexpr std::size_t WaitsLength = 16384;

struct ExactState {
    bool wanted = false;
    std::uint64_t seed = 1;
    char policy[PolicyLength] = {};
    char traceFile[256] = {};  // empty: none
    std::uint64_t traceFrom = 1;
    std::uint64_t traceTo = 0;
    std::atomic<std::int64_t> stopAt{0};  // simulated CLOCK_MONOTONIC, nanoseconds
    std::atomic<std::uint32_t> phase{0};  // futex word: an ExactPhase
    bool pauseAsked = false;              // by a call of the program that the bench reacts to
    bool quiet = false;                   // all threads wait, none with a deadline
    std::uint64_t hash = 0;               // of all events
    std::uint64_t events = 0;
    std::uint64_t decisions = 0;   // of this process
    std::uint64_t switches = 0;    // of this process
    char waits[WaitsLength] = {};  // a line for each thread
    char failure[256] = {};        // why the simulation could not go on; empty: it could
};

}  // namespace Bench
