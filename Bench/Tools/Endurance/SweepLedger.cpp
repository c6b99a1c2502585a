#include "Bench/Tools/Endurance/SweepLedger.h"

#include <sys/mman.h>

namespace Bench {

SweepLedger::SweepLedger(std::size_t trials) : m_trials(trials) {
    void* memory = mmap(nullptr, Size(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED) {
        m_next = static_cast<Word*>(memory);  // the kernel's zeros
        m_outcomes = m_next + 1;
    }
}

SweepLedger::~SweepLedger() {
    if (m_next != nullptr) {
        munmap(m_next, Size());
    }
}

std::optional<std::size_t> SweepLedger::Begin() {
    const std::size_t trial = m_next->fetch_add(1);
    if (trial >= m_trials) {
        return std::nullopt;
    }
    Note(trial, SweepOutcome::Hung);
    return trial;
}

void SweepLedger::Note(std::size_t trial, SweepOutcome outcome) {
    m_outcomes[trial].store(static_cast<std::size_t>(outcome) + 1);
}

std::optional<SweepOutcome> SweepLedger::OutcomeOf(std::size_t trial) const {
    const std::size_t noted = m_outcomes[trial].load();
    return noted == 0 ? std::nullopt : std::make_optional(static_cast<SweepOutcome>(noted - 1));
}

}  // namespace Bench
