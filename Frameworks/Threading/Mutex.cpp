#include "Frameworks/Threading/Mutex.h"

#include <cerrno>
#include <ctime>

bool Condition::WaitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline) {
    const std::chrono::nanoseconds time = deadline.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    timespec until{};
    until.tv_sec = static_cast<time_t>(seconds.count());
    until.tv_nsec = static_cast<long>((time - seconds).count());
    return pthread_cond_clockwait(&m_condition, &mutex.m_mutex, CLOCK_MONOTONIC, &until) != ETIMEDOUT;
}
