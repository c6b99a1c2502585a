#include "Bench/Deterministic/Scheduler.h"

#include <algorithm>

namespace Bench {

std::optional<int> Scheduler::Add() {
    const auto free = std::find_if(m_threads.begin(), m_threads.end(), [](const Thread& t) { return t.ordinal < 0; });
    if (free == m_threads.end()) {
        return std::nullopt;
    }
    *free = Thread{};
    free->ordinal = m_created++;
    free->priority = m_policy.PriorityOfNewThread();
    const int number = static_cast<int>(free - m_threads.begin());
    m_numbers[static_cast<std::size_t>(m_living++)] = number;
    ++m_ready;
    return number;
}

void Scheduler::End(int thread) {
    m_ready -= Of(thread).wait == Wait::None ? 1 : 0;
    Of(thread) = Thread{};
    // Not by std::copy: that is memmove, which the thread sanitizer watches.
    const auto last = std::remove(m_numbers.begin(), m_numbers.begin() + m_living, thread);
    m_living = static_cast<int>(last - m_numbers.begin());
}

void Scheduler::Block(int thread, Wait wait, const void* object, std::int64_t deadline) {
    Thread& waiting = Of(thread);
    waiting.wait = wait;
    waiting.object = object;
    waiting.deadline = deadline;
    waiting.timedOut = false;
    m_soonest = std::min(m_soonest, deadline);
    --m_ready;
}

void Scheduler::MakeReady(Thread& thread, bool timedOut) {
    thread.wait = Wait::None;
    thread.object = nullptr;
    thread.deadline = Forever;
    thread.timedOut = timedOut;
    ++m_ready;
}

int Scheduler::Wake(Wait wait, const void* object, int most) {
    std::array<int, MaxThreads> found;
    std::size_t count = 0;
    for (int i = 0; i < m_living; ++i) {
        const Thread& thread = At(NumberOf(i));
        if (thread.wait == wait && thread.object == object) {
            found[count++] = NumberOf(i);
        }
    }
    int woken = 0;
    for (; woken < most && count > 0; ++woken) {
        const std::size_t chosen = static_cast<std::size_t>(most) >= count + static_cast<std::size_t>(woken)
                                       ? 0
                                       : static_cast<std::size_t>(m_policy.Any(count));
        MakeReady(Of(found[chosen]), false);
        found[chosen] = found[--count];
    }
    return woken;
}

void Scheduler::Expire() {
    if (m_now < m_soonest) {
        return;
    }
    for (int i = 0; i < m_living; ++i) {
        Thread& thread = Of(NumberOf(i));
        if (thread.wait != Wait::None && thread.deadline <= m_now) {
            MakeReady(thread, true);
        }
    }
    m_soonest = FirstDeadline();
}

std::int64_t Scheduler::FirstDeadline() const {
    std::int64_t first = Forever;
    for (int i = 0; i < m_living; ++i) {
        first = std::min(first, At(NumberOf(i)).deadline);
    }
    return first;
}

std::optional<int> Scheduler::Next(int running, bool yields) {
    Expire();
    const bool goesOn = At(running).ordinal >= 0 && At(running).wait == Wait::None;
    if (m_ready == 0) {
        return std::nullopt;
    }
    if (m_ready == 1 && goesOn) {
        return running;
    }
    std::size_t count = 0;
    std::optional<std::size_t> own;
    for (int i = 0; i < m_living; ++i) {
        Thread& thread = Of(NumberOf(i));
        if (thread.wait == Wait::None) {
            own = NumberOf(i) == running && !yields ? count : own;
            m_candidates[count++] = {NumberOf(i), &thread.priority};
        }
    }
    if (count == 1) {
        return m_candidates[0].thread;
    }
    ++m_decisions;
    return m_candidates[m_policy.Choose({m_candidates.data(), count}, own)].thread;
}

}  // namespace Bench
