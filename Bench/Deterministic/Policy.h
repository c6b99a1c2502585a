// Which of the ready threads runs next, drawn from a seed. The holder of the token calls it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Bench {

// SplitMix64: the same numbers on every machine.
class SeededRandom {
public:
    explicit SeededRandom(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t Next();
    std::uint64_t Below(std::uint64_t bound);  // 0 to bound - 1; the bound is at least 1
    double Fraction();                         // 0 up to but not including 1

private:
    std::uint64_t m_state;
};

struct Candidate {
    int thread = 0;
    std::int64_t* priority = nullptr;  // of that thread
};

// The policies, as written: "random" (any of them), "sticky[:P]" (the running thread goes on, but with probability P),
// "priority[:P]" (the highest priority runs, and a running thread is put below all others with probability P),
// "until-blocked" (the running thread goes on until it waits), "stalls[:P]" (as random, and with probability P the
// running thread is held for 1 ns to 100 ms as if another process had its processor).
class Policy {
public:
    // Nothing, with the reason in `error`, if that is no policy. P is more than 0 and at most 1.
    static std::optional<Policy> Read(std::string_view text, std::uint64_t seed, std::string& error);

    std::int64_t PriorityOfNewThread();
    // The index of the thread that runs next. `running`: the index of the one that runs now; none if it waits.
    std::size_t Choose(std::span<const Candidate> ready, std::optional<std::size_t> running);
    std::uint64_t Any(std::uint64_t bound) { return m_random.Below(bound); }
    std::int64_t Stall();  // nanoseconds for which the running thread is held now; mostly 0

private:
    enum class Kind { Random, Sticky, Priority, UntilBlocked, Stalls };

    Policy(Kind kind, double probability, std::uint64_t seed)
        : m_kind(kind), m_probability(probability), m_random(seed) {}

    Kind m_kind;
    double m_probability;
    SeededRandom m_random;
    std::int64_t m_lowest = 0;
};

}  // namespace Bench
