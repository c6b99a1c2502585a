// A one-shot timer: each Start creates a thread that sleeps for the duration and then calls TimerExpired, unless the
// timer was cancelled. The owner's thread sets, starts and kills it; TimerExpired runs on the timer's own thread. No
// run outlives the timer: its destruction cuts a sleep short, and such a run does not call TimerExpired. A final
// subclass has to call EndRuns first in its destructor, while its TimerExpired still exists; the process aborts if it
// does not.
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

    // Milliseconds. A run takes the duration that is set when its thread begins.
    void SetDuration(std::uint32_t milliseconds);
    std::uint32_t GetDuration() const;
    TimeInfo GetDurationValue() const;  // the same as seconds and nanoseconds

    // Also revokes an earlier Kill. A run that still sleeps goes on, so that both expire. False if no thread could be
    // created.
    bool Start();

    std::int32_t Run() override;
    // Wakes nothing: a sleeping run ends after its full duration, without a call of TimerExpired.
    void Kill() override;
    std::int32_t Exit() override;
    bool Init() override;

protected:
    // False if the owner could not be notified; the result is ignored.
    virtual bool TimerExpired() = 0;

    // Wakes the runs that sleep and waits for all to end. Nothing starts afterwards.
    void EndRuns();

private:
    void NoteBegin();
    void NoteEnd();
    bool Sleep();  // false if it was cut short
    void JoinEnded();

    std::atomic<bool> m_cancelled = false;

    mutable Mutex m_mutex;
    Condition m_changed;  // of m_ending, m_beginning or m_running
    std::uint32_t m_duration GUARDED_BY(m_mutex) = 0;
    TimeInfo m_durationValue GUARDED_BY(m_mutex);
    bool m_ending GUARDED_BY(m_mutex) = false;
    int m_beginning GUARDED_BY(m_mutex) = 0;  // threads created that have not registered their id yet
    std::vector<pthread_t> m_running GUARDED_BY(m_mutex);
    std::vector<pthread_t> m_ended GUARDED_BY(m_mutex);  // not joined yet
};
