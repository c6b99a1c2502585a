// The board's clock: simulated time from two anchors and a factor, and waiting for it. Every time hook reads it, so it
// neither locks nor allocates. In exact time a simulation in the program's process sets it instead. All functions from
// any thread and any process of the board.
#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>

namespace Bench {

constexpr std::int64_t NanoSecondsPerSecond = 1000000000;
constexpr std::int64_t MonotonicAtStart = 1000 * NanoSecondsPerSecond;

// Read without a lock: a writer makes `sequence` odd, changes the rest and makes it even again.
struct ClockState {
    std::atomic<std::uint32_t> sequence{0};
    std::atomic<std::int64_t> realAnchor{0};   // real CLOCK_MONOTONIC, nanoseconds
    std::atomic<std::int64_t> boardAnchor{0};  // simulated CLOCK_MONOTONIC at that moment
    std::atomic<std::int64_t> speed{1000000};  // millionths
    std::atomic<std::int64_t> wallOffset{0};   // CLOCK_REALTIME less CLOCK_MONOTONIC
    std::atomic<std::int64_t> jumpAt{0};       // from this moment on ...
    std::atomic<std::int64_t> jumpBy{0};       // ... the wall clock is ahead by this much
    std::atomic<std::uint32_t> changes{0};     // futex word: speed or wall clock set
    std::atomic<bool> held{false};             // the speed does not change, so waits need not be split
    std::atomic<bool> exact{false};            // exact time: `exactNow` is simulated CLOCK_MONOTONIC, speed 1
    std::atomic<std::int64_t> exactNow{0};
};

inline std::int64_t NanoSecondsOf(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * NanoSecondsPerSecond + time.tv_nsec;
}

inline timespec TimespecOf(std::int64_t nanoSeconds) {
    return {static_cast<time_t>(nanoSeconds / NanoSecondsPerSecond),
            static_cast<long>(nanoSeconds % NanoSecondsPerSecond)};
}

std::int64_t RealNanoSeconds();                                        // CLOCK_MONOTONIC of the machine
std::int64_t MonotonicNow(const ClockState& clock);                    // as the program sees it
std::int64_t WallNow(const ClockState& clock);                         // as the program sees it
std::int64_t MonotonicAt(const ClockState& clock, std::int64_t wall);  // when the wall clock first shows that, or did
std::int64_t ToReal(const ClockState& clock, std::int64_t simulated);  // a duration, rounded up

void StartClock(ClockState& clock, double speed, std::int64_t startSeconds);
void SetClockSpeed(ClockState& clock, double speed);
// Sets the wall clock ahead by `by` at the moment `at`. Only one jump can be pending: an earlier one happens now.
void JumpClockAt(ClockState& clock, std::int64_t at, std::int64_t by);
void CancelJump(ClockState& clock);  // the pending one

// What runs and waits instead of the machine: the simulation in this process, for the threads that belong to it.
struct TimeSource {
    bool (*runs)();  // and the calling thread belongs to it
    int (*wait)(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoSeconds);
    void (*wake)(const std::atomic<std::uint32_t>& word);
    void (*point)();            // another thread may run now
    void (*hide)(bool begins);  // from now on the thread sanitizer does not watch the calling thread, or does again
};
void SetTimeSource(const TimeSource* source);  // null: the machine. No thread may be in a hook.
const TimeSource* Simulated();                 // null: the calling thread runs on the machine's time

// Waits until a futex word of any process differs, or for that many real nanoseconds, in exact time simulated ones. 0,
// ETIMEDOUT or EINTR.
constexpr std::int64_t WithoutEnd = INT64_MAX;  // in exact time alone
int FutexWait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t realNanoSeconds);
void FutexWakeAll(const std::atomic<std::uint32_t>& word);

}  // namespace Bench
