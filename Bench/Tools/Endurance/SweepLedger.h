// The state that the processes of a sweep share: the next trial, and the outcomes. One thread in each process forked
// after its construction.
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

    bool IsMade() const { return m_next != nullptr; }  // false: no memory, and no other call is allowed

    // The next trial that is not yet started, if any. Its outcome is Hung until Note.
    std::optional<std::size_t> Begin();
    void Note(std::size_t trial, SweepOutcome outcome);
    // Nothing if it was not started.
    std::optional<SweepOutcome> OutcomeOf(std::size_t trial) const;

private:
    std::size_t Size() const { return (m_trials + 1) * sizeof(Word); }

    using Word = std::atomic<std::size_t>;
    static_assert(Word::is_always_lock_free);

    const std::size_t m_trials;
    Word* m_next = nullptr;      // 0 to m_trials and above
    Word* m_outcomes = nullptr;  // 0: not started; else 1 and the outcome
};

}  // namespace Bench
