// Times a task. On a shared machine the processor time of the thread says more than the clock on the wall, as long as
// the task itself waits for nobody; a task of several threads takes the wall clock.
#pragma once

#include <ctime>

enum class TimeOf { THIS_THREAD, THE_WALL };

inline double Now(TimeOf kind) {
    timespec time{};
    clock_gettime(kind == TimeOf::THIS_THREAD ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &time);
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
