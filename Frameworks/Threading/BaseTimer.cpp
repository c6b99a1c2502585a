#include "Frameworks/Threading/BaseTimer.h"

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

BaseTimer::BaseTimer() { m_durationValue.Clear(); }

BaseTimer::~BaseTimer() {
    const MutexLock lock(m_mutex);
    if (!m_ending) {
        std::fputs("BaseTimer: a subclass did not call EndRuns in its destructor\n", stderr);
        std::abort();
    }
}

void BaseTimer::SetDuration(std::uint32_t milliseconds) {
    const MutexLock lock(m_mutex);
    m_duration = milliseconds;
    m_durationValue.Clear();
    m_durationValue.AddMilliSeconds(milliseconds);
}

std::uint32_t BaseTimer::GetDuration() const {
    const MutexLock lock(m_mutex);
    return m_duration;
}

TimeInfo BaseTimer::GetDurationValue() const {
    const MutexLock lock(m_mutex);
    return m_durationValue;
}

bool BaseTimer::Start() {
    m_cancelled = false;
    JoinEnded();
    {
        const MutexLock lock(m_mutex);
        ++m_beginning;
    }
    if (CreateThread()) {
        return true;
    }
    const MutexLock lock(m_mutex);
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
    const MutexLock lock(m_mutex);  // several runs share the object
    ThreadBase::Init();
    return true;
}

void BaseTimer::NoteBegin() {
    const MutexLock lock(m_mutex);
    m_running.push_back(pthread_self());
    --m_beginning;
    m_changed.NotifyAll();
}

void BaseTimer::NoteEnd() {
    const MutexLock lock(m_mutex);
    std::erase_if(m_running, [](pthread_t id) { return pthread_equal(id, pthread_self()) != 0; });
    m_ended.push_back(pthread_self());
    m_changed.NotifyAll();
}

bool BaseTimer::Sleep() {
    const MutexLock lock(m_mutex);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(m_durationValue.GetSeconds()) +
                          std::chrono::nanoseconds(m_durationValue.GetNanoSeconds());
    while (!m_ending && m_changed.WaitUntil(m_mutex, deadline)) {
    }
    return !m_ending;
}

// However often a timer is started, it keeps no threads but the runs that sleep and the last one that ended.
void BaseTimer::JoinEnded() {
    std::vector<pthread_t> ended;
    {
        const MutexLock lock(m_mutex);
        ended.swap(m_ended);
    }
    for (const pthread_t id : ended) {
        pthread_join(id, nullptr);
    }
}

void BaseTimer::EndRuns() {
    {
        const MutexLock lock(m_mutex);
        m_ending = true;
        m_changed.NotifyAll();
        while (m_beginning != 0 || !m_running.empty()) {
            m_changed.Wait(m_mutex);
        }
    }
    JoinEnded();
}
