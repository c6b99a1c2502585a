// What a sweep's jobs, which are processes, share: which trial is next, and how those that were begun have ended.
// Any process that was forked after its making; one thread in each.
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>

#include "Bench/Tools/Endurance/SweepCase.h"

namespace Bench {

class SweepLedger {
public:
    explicit SweepLedger(std::size_t trials);
    ~SweepLedger();
    SweepLedger(const SweepLedger&) = delete;
    SweepLedger& operator=(const SweepLedger&) = delete;

    bool IsMade() const { return m_next != nullptr; }  // false: no memory; nothing else may be called

    // The next that nobody has begun; nothing where there is none. It counts as hung until it is noted.
    std::optional<std::size_t> Begin();
    void Note(std::size_t trial, SweepOutcome outcome);
    // Nothing where it was never begun.
    std::optional<SweepOutcome> OutcomeOf(std::size_t trial) const;

private:
    std::size_t Size() const { return (m_trials + 1) * sizeof(Word); }

    using Word = std::atomic<std::size_t>;
    static_assert(Word::is_always_lock_free);

    const std::size_t m_trials;
    Word* m_next = nullptr;      // 0 to m_trials and above
    Word* m_outcomes = nullptr;  // 0: never begun; else 1 and the outcome
};

}  // namespace Bench
