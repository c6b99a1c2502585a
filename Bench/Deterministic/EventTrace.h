// What happened in a run: a hash over every event, and a window of the events as text. The holder of the token calls
// it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Bench {

enum class Event : std::uint8_t {
    Create,
    Begin,
    End,
    Join,
    Lock,
    Unlock,
    SemaphoreWait,
    SemaphorePost,
    ConditionWait,
    ConditionSignal,
    WordWait,
    WordWake,
    Clock,
    Yield,
    Device,
    Run,
    Block,
    Stall,
    Fork,
    Kill
};

class EventTrace {
public:
    ~EventTrace() { Close(); }

    // The events number `from` up to and including `to` go to the file, a line each. False if it can't be made.
    bool Open(const char* path, std::uint64_t from, std::uint64_t to);
    // Writes what there is to the file. False if that could not take all events so far.
    bool Flush();
    // Writes what is left. False if the file could not take all of its events.
    bool Close();

    // One event: its moment in nanoseconds, its thread in order of creation, and its result.
    void Add(Event event, std::int64_t now, std::int64_t thread, std::int64_t result);

    std::uint64_t Hash() const { return m_hash; }
    std::uint64_t Count() const { return m_count; }
    // Changes with each event. Any thread.
    std::uint32_t Beat() const { return m_beat.load(std::memory_order_relaxed); }
    // Goes on from where an earlier process of the run ended.
    void Continue(std::uint64_t hash, std::uint64_t count);

private:
    void AddLine(Event event, std::int64_t now, std::int64_t thread, std::int64_t result);

    std::uint64_t m_hash = 14695981039346656037U;
    std::uint64_t m_count = 0;
    std::atomic<std::uint32_t> m_beat{0};
    std::uint64_t m_from = 1;
    std::uint64_t m_to = 0;
    int m_file = -1;
    bool m_lost = false;
    std::size_t m_used = 0;
    char m_text[16384];
};

}  // namespace Bench
