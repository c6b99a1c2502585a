// Times a task. On a shared machine processor time is more accurate than the wall clock: that of the thread, or that of
// all threads if they work on the task one after the other. The wall clock is for tasks of a few microseconds.
#pragma once

#include <ctime>

enum class TimeOf : clockid_t {
    THIS_THREAD = CLOCK_THREAD_CPUTIME_ID,
    ALL_THREADS = CLOCK_PROCESS_CPUTIME_ID,
    THE_WALL = CLOCK_MONOTONIC,
};

inline double Now(TimeOf kind) {
    timespec time{};
    clock_gettime(static_cast<clockid_t>(kind), &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Seconds that the task takes once, as the mean over `times`.
template <class Task>
double SecondsEach(int times, const Task& task, TimeOf kind = TimeOf::THIS_THREAD) {
    const double start = Now(kind);
    for (int done = 0; done < times; ++done) {
        task();
    }
    return (Now(kind) - start) / times;
}
