// Threads that run one at a time in simulated time: who is ready, who waits for what and until when, who runs next. It
// knows threads by number and what they wait for by address, and calls no system. The holder of the token calls it.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>

#include "Bench/Deterministic/Policy.h"

namespace Bench {

enum class Wait : std::uint8_t { None, Mutex, Semaphore, Condition, Futex, Word, Thread, Stall };

constexpr const char* WaitNames[] = {"ready", "mutex", "semaphore", "condition", "futex", "word", "thread", "stall"};

class Scheduler {
public:
    static constexpr int MaxThreads = 512;
    static constexpr std::int64_t Forever = std::numeric_limits<std::int64_t>::max();

    struct Thread {
        std::int64_t ordinal = -1;  // in order of creation, from 0; -1: the number is free
        Wait wait = Wait::None;
        const void* object = nullptr;
        std::int64_t deadline = Forever;
        std::int64_t priority = 0;
        bool timedOut = false;
    };

    Scheduler(const Policy& policy, std::int64_t now) : m_policy(policy), m_now(now) {}

    // A new thread, ready. Its number is free again after End. Nothing if there are MaxThreads.
    std::optional<int> Add();
    void End(int thread);

    std::int64_t Now() const { return m_now; }  // nanoseconds
    void Spend(std::int64_t nanoSeconds) { m_now += nanoSeconds; }
    void SetNow(std::int64_t now) { m_now = now; }  // forward only

    // The thread waits from now on, until it is woken or the deadline is reached.
    void Block(int thread, Wait wait, const void* object, std::int64_t deadline);
    // Makes up to `most` of the threads ready that wait so for that object, any of them. Returns how many.
    int Wake(Wait wait, const void* object, int most = MaxThreads);
    bool TimedOut(int thread) const { return m_threads[static_cast<std::size_t>(thread)].timedOut; }

    // The thread that runs next, after all whose deadline has been reached are ready. Nothing if all wait. One that
    // yields is chosen as if it had not been running.
    std::optional<int> Next(int running, bool yields = false);
    std::int64_t FirstDeadline() const;  // of those that wait; Forever: they wait for each other
    std::int64_t Stall() { return m_policy.Stall(); }

    const Thread& At(int thread) const { return m_threads[static_cast<std::size_t>(thread)]; }
    int Living() const { return m_living; }
    int NumberOf(int index) const { return m_numbers[static_cast<std::size_t>(index)]; }  // index: 0 to Living() - 1
    std::uint64_t Decisions() const { return m_decisions; }

private:
    Thread& Of(int thread) { return m_threads[static_cast<std::size_t>(thread)]; }
    void MakeReady(Thread& thread, bool timedOut);
    void Expire();

    Policy m_policy;
    std::int64_t m_now;
    std::int64_t m_created = 0;
    std::int64_t m_soonest = Forever;  // no deadline is earlier
    int m_living = 0;
    int m_ready = 0;
    std::uint64_t m_decisions = 0;
    std::array<int, MaxThreads> m_numbers{};  // of the living, the oldest first
    std::array<Thread, MaxThreads> m_threads{};
    std::array<Candidate, MaxThreads> m_candidates{};  // of the choice in progress
};

}  // namespace Bench
