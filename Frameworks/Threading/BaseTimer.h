// A one-shot timer: each Start makes a thread that sleeps for the duration and then, unless the timer was cancelled,
// calls TimerExpired. The owner's thread sets, starts and kills it; TimerExpired runs on the timer's own thread. No run
// outlives the timer: a sleep is cut short when the timer is destroyed, and such a run doesn't call TimerExpired. Every
// class that can be instantiated has to call EndRuns first thing in its destructor, while its TimerExpired still
// stands.
#pragma once

#include <atomic>
#include <vector>

#include "Frameworks/Threading/Mutex.h"
#include "Frameworks/Threading/ThreadBase.h"
#include "Frameworks/Utilities/TimeInfo.h"

class BaseTimer : public ThreadBase {
public:
    BaseTimer();
    BaseTimer(const BaseTimer&) = delete;
    BaseTimer& operator=(const BaseTimer&) = delete;
    ~BaseTimer() override;

    // Milliseconds. A run takes the duration that stands when its thread begins.
    void SetDuration(std::uint32_t milliseconds);
    std::uint32_t GetDuration() const;
    TimeInfo GetDurationValue() const;  // the same as seconds and nanoseconds

    // Also lifts an earlier Kill. A run that still sleeps goes on, so that both expire. False where there is no thread
    // to be had.
    bool Start();

    std::int32_t Run() override;
    // Wakes nothing: a sleeping run ends after its full duration, without a call of TimerExpired.
    void Kill() override;
    std::int32_t Exit() override;
    bool Init() override;

protected:
    // False where the owner couldn't be told; nobody looks.
    virtual bool TimerExpired() = 0;

    // Wakes the runs that sleep and waits for all to end. Nothing starts afterwards.
    void EndRuns();

private:
    void NoteBegin();
    void NoteEnd();
    bool Sleep();  // false where it was cut short
    void JoinEnded();

    std::atomic<bool> m_cancelled = false;

    mutable Mutex m_mutex;
    Condition m_changed;  // of m_ending, m_beginning or m_running
    std::uint32_t m_duration GUARDED_BY(m_mutex) = 0;
    TimeInfo m_durationValue GUARDED_BY(m_mutex);
    bool m_ending GUARDED_BY(m_mutex) = false;
    int m_beginning GUARDED_BY(m_mutex) = 0;  // threads that were created and have not registered their id yet
    std::vector<pthread_t> m_running GUARDED_BY(m_mutex);
    std::vector<pthread_t> m_ended GUARDED_BY(m_mutex);  // not joined yet
};
