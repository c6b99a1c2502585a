#include "Frameworks/Threading/BaseTimer.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>

BaseTimer::BaseTimer() { m_durationValue.Clear(); }

BaseTimer::~BaseTimer() { EndRuns(); }

void BaseTimer::SetDuration(std::uint32_t milliseconds) {
    const std::lock_guard lock(m_mutex);
    m_duration = milliseconds;
    m_durationValue.Clear();
    m_durationValue.AddMilliSeconds(milliseconds);
}

std::uint32_t BaseTimer::GetDuration() const {
    const std::lock_guard lock(m_mutex);
    return m_duration;
}

TimeInfo BaseTimer::GetDurationValue() const {
    const std::lock_guard lock(m_mutex);
    return m_durationValue;
}

bool BaseTimer::Start() {
    m_cancelled = false;
    JoinEnded();
    {
        const std::lock_guard lock(m_mutex);
        ++m_beginning;
    }
    if (CreateThread()) {
        return true;
    }
    const std::lock_guard lock(m_mutex);
    --m_beginning;
    return false;
}

std::int32_t BaseTimer::Run() {
    NoteBegin();
    if (Init() && Sleep() && !m_cancelled) {
        TimerExpired();
    }
    NoteEnd();
    return Exit();
}

void BaseTimer::Kill() { m_cancelled = true; }

std::int32_t BaseTimer::Exit() { pthread_exit(nullptr); }

bool BaseTimer::Init() {
    const std::lock_guard lock(m_mutex);  // several runs share the object
    ThreadBase::Init();
    return true;
}

void BaseTimer::NoteBegin() {
    const std::lock_guard lock(m_mutex);
    m_running.push_back(pthread_self());
    --m_beginning;
    m_changed.notify_all();
}

void BaseTimer::NoteEnd() {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_running, [](pthread_t id) { return pthread_equal(id, pthread_self()) != 0; });
    m_ended.push_back(pthread_self());
    m_changed.notify_all();
}

bool BaseTimer::Sleep() {
    std::unique_lock lock(m_mutex);
    const std::chrono::nanoseconds length =
        std::chrono::seconds(m_durationValue.GetSeconds()) + std::chrono::nanoseconds(m_durationValue.GetNanoSeconds());
    return !m_changed.wait_for(lock, length, [this] { return m_ending; });
}

// A timer that is started for years keeps no more threads than the runs that sleep and the last that ended.
void BaseTimer::JoinEnded() {
    std::vector<pthread_t> ended;
    {
        const std::lock_guard lock(m_mutex);
        ended.swap(m_ended);
    }
    for (const pthread_t id : ended) {
        pthread_join(id, nullptr);
    }
}

void BaseTimer::EndRuns() {
    {
        std::unique_lock lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_beginning == 0 && m_running.empty(); });
    }
    JoinEnded();
}
