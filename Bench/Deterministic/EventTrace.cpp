#include "Bench/Deterministic/EventTrace.h"

#include <fcntl.h>

#include <cstdio>

#include "Bench/Board/Real.h"
#include "Bench/Deterministic/Unwatched.h"

namespace Bench {

namespace {

constexpr std::size_t MaxLine = 128;

constexpr const char* EventNames[] = {"create",
                                      "begin",
                                      "end",
                                      "join",
                                      "lock",
                                      "unlock",
                                      "semaphore-wait",
                                      "semaphore-post",
                                      "condition-wait",
                                      "condition-signal",
                                      "word-wait",
                                      "word-wake",
                                      "clock",
                                      "yield",
                                      "device",
                                      "run",
                                      "block",
                                      "stall",
                                      "fork",
                                      "kill"};

}  // namespace

bool EventTrace::Open(const char* path, std::uint64_t from, std::uint64_t to) {
    m_file = Real::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    m_from = from;
    m_to = to;
    return m_file >= 0;
}

bool EventTrace::Close() {
    if (m_file >= 0) {
        Flush();
        m_lost = Real::close(m_file) != 0 || m_lost;
        m_file = -1;
    }
    return !m_lost;
}

void EventTrace::Continue(std::uint64_t hash, std::uint64_t count) {
    m_hash = count == 0 ? m_hash : hash;
    m_count = count;
}

void EventTrace::Add(Event event, std::int64_t now, std::int64_t thread, std::int64_t result) {
    for (const std::uint64_t value :
         {static_cast<std::uint64_t>(now), static_cast<std::uint64_t>(thread) << 8U | static_cast<std::uint64_t>(event),
          static_cast<std::uint64_t>(result)}) {
        m_hash = (m_hash ^ value) * 0x9E3779B97F4A7C15U;
        m_hash ^= m_hash >> 29U;
    }
    ++m_count;
    m_beat.store(static_cast<std::uint32_t>(m_count), std::memory_order_relaxed);
    if (m_file >= 0 && m_count >= m_from && m_count <= m_to) {
        AddLine(event, now, thread, result);
    }
}

void EventTrace::AddLine(Event event, std::int64_t now, std::int64_t thread, std::int64_t result) {
    if (m_used + MaxLine > sizeof(m_text)) {
        Flush();
    }
    const Unwatched unwatched;
    const int length = std::snprintf(m_text + m_used, MaxLine, "%llu %lld.%09lld thread %lld %s %lld\n",
                                     static_cast<unsigned long long>(m_count), static_cast<long long>(now / 1000000000),
                                     static_cast<long long>(now % 1000000000), static_cast<long long>(thread),
                                     EventNames[static_cast<std::size_t>(event)], static_cast<long long>(result));
    m_used += static_cast<std::size_t>(length);
}

bool EventTrace::Flush() {
    for (std::size_t written = 0; written < m_used;) {
        const ssize_t moved = Real::write(m_file, m_text + written, m_used - written);
        if (moved <= 0) {
            m_lost = true;
            break;
        }
        written += static_cast<std::size_t>(moved);
    }
    m_used = 0;
    return !m_lost;
}

}  // namespace Bench
