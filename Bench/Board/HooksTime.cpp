// Clocks and sleeps. They are called by the sanitizers too: nothing here allocates or locks.
#include <semaphore.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

// Real length of one wait inside a long one: so late at most a change of the clock's speed is followed.
constexpr std::int64_t Slice = 100000000;
constexpr std::int64_t LongestSlice = 1000 * NanoSecondsPerSecond;  // where the speed is held
constexpr std::int64_t ConditionSlice = 1000000000;
constexpr std::int64_t NanoSecondsPerMicroSecond = 1000;

bool Valid(const timespec& time) { return time.tv_nsec >= 0 && time.tv_nsec < NanoSecondsPerSecond; }

std::int64_t NanoSecondsOf(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * NanoSecondsPerSecond + time.tv_nsec;
}

timespec TimespecOf(std::int64_t nanoSeconds) {
    return {static_cast<time_t>(nanoSeconds / NanoSecondsPerSecond),
            static_cast<long>(nanoSeconds % NanoSecondsPerSecond)};
}

bool IsWallClock(clockid_t clock) { return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE; }

bool IsSteadyClock(clockid_t clock) {
    return clock == CLOCK_MONOTONIC || clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_MONOTONIC_RAW ||
           clock == CLOCK_BOOTTIME;
}

std::int64_t Now(const BoardState& state, clockid_t clock) {
    return IsWallClock(clock) ? WallNow(state.clock) : MonotonicNow(state.clock);
}

// The wait on a lock or a queue until a simulated moment, in pieces of the real CLOCK_MONOTONIC or CLOCK_REALTIME.
// `wait` takes the real moment and gives 0 or an error number.
template <typename Wait>
int WaitInPieces(const BoardState& state, clockid_t clock, const timespec& until, clockid_t realClock, Wait wait) {
    for (;;) {
        const std::int64_t left = std::max<std::int64_t>(NanoSecondsOf(until) - Now(state, clock), 0);
        const std::int64_t real = std::min(ToReal(state.clock, left), state.clock.held.load() ? LongestSlice : Slice);
        timespec realNow{};
        Real::clock_gettime(realClock, &realNow);
        const timespec realUntil = TimespecOf(NanoSecondsOf(realNow) + real);
        const int error = wait(realUntil);
        if (error != ETIMEDOUT || NanoSecondsOf(until) <= Now(state, clock)) {
            return error;
        }
    }
}

int SemaphoreWait(BoardState& state, sem_t* semaphore, clockid_t clock, const timespec& until) {
    const int error = WaitInPieces(state, clock, until, CLOCK_REALTIME, [semaphore](const timespec& realUntil) {
        return Real::sem_timedwait(semaphore, &realUntil) == 0 ? 0 : errno;
    });
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? 0 : -1;
}

// One piece only: a wait that is cut short is a spurious wake-up, which every caller must expect, whereas waiting again
// without a look at the condition could miss the wake-up in between.
int ConditionWait(BoardState& state, pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                  const timespec& until) {
    const std::int64_t left = std::max<std::int64_t>(NanoSecondsOf(until) - Now(state, clock), 0);
    const std::int64_t real = std::min(ToReal(state.clock, left), ConditionSlice);
    const timespec realUntil = TimespecOf(RealNanoSeconds() + real);
    const int error = Real::pthread_cond_clockwait(condition, mutex, CLOCK_MONOTONIC, &realUntil);
    return error == ETIMEDOUT && NanoSecondsOf(until) > Now(state, clock) ? 0 : error;
}

// The clock of a condition variable's attributes, where glibc keeps it.
clockid_t ClockOf(const pthread_cond_t* condition) {
    constexpr unsigned MonotonicFlag = 2;
    return (condition->__data.__wrefs & MonotonicFlag) != 0 ? CLOCK_MONOTONIC : CLOCK_REALTIME;
}

}  // namespace

int SleepSimulated(BoardState& state, std::int64_t nanoSeconds, std::int64_t* left) {
    const std::int64_t end = MonotonicNow(state.clock) + nanoSeconds;
    for (;;) {
        EndWithBoard(state);
        const std::uint32_t seen = state.clock.changes.load();
        const std::int64_t rest = end - MonotonicNow(state.clock);
        if (rest <= 0) {
            return 0;
        }
        if (FutexWait(state.clock.changes, seen, ToReal(state.clock, rest)) == EINTR) {
            if (left != nullptr) {
                *left = std::max<std::int64_t>(end - MonotonicNow(state.clock), 0);
            }
            return EINTR;
        }
    }
}

}  // namespace Bench

using namespace Bench;

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr || (!IsWallClock(clock) && !IsSteadyClock(clock))) {
        return Real::clock_gettime(clock, time);
    }
    if (const int error = IsWallClock(clock) ? CountCall(*state, Call::ClockGettime) : 0; error != 0) {
        errno = error;
        return -1;
    }
    *time = TimespecOf(Now(*state, clock));
    return 0;
}

int gettimeofday(timeval* time, void* zone) noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gettimeofday(time, zone);
    }
    const std::int64_t now = WallNow(state->clock);
    time->tv_sec = static_cast<time_t>(now / NanoSecondsPerSecond);
    time->tv_usec = static_cast<suseconds_t>(now % NanoSecondsPerSecond / NanoSecondsPerMicroSecond);
    return 0;
}

time_t time(time_t* result) noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::time(result);
    }
    const auto now = static_cast<time_t>(WallNow(state->clock) / NanoSecondsPerSecond);
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

// Simulated time since the start of the run, not processor time: a busy wait of the program takes its
// simulated length whatever the machine's load.
clock_t clock() noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::clock();
    }
    return static_cast<clock_t>((MonotonicNow(state->clock) - MonotonicAtStart) / NanoSecondsPerMicroSecond);
}

int nanosleep(const timespec* request, timespec* remainder) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*request) || request->tv_sec < 0) {
        return Real::nanosleep(request, remainder);
    }
    std::int64_t left = 0;
    const int error = SleepSimulated(*state, NanoSecondsOf(*request), &left);
    if (error == 0) {
        return 0;
    }
    if (remainder != nullptr) {
        *remainder = TimespecOf(left);
    }
    errno = error;
    return -1;
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* request, timespec* remainder) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*request) || request->tv_sec < 0 || (!IsWallClock(clock) && !IsSteadyClock(clock))) {
        return Real::clock_nanosleep(clock, flags, request, remainder);
    }
    std::int64_t left = 0;
    if ((flags & TIMER_ABSTIME) == 0) {
        const int error = SleepSimulated(*state, NanoSecondsOf(*request), &left);
        if (error != 0 && remainder != nullptr) {
            *remainder = TimespecOf(left);
        }
        return error;
    }
    for (;;) {  // a jump of the wall clock moves the end
        const std::int64_t rest = NanoSecondsOf(*request) - Now(*state, clock);
        if (rest <= 0) {
            return 0;
        }
        const int error = SleepSimulated(*state, std::min(rest, NanoSecondsPerSecond), nullptr);
        if (error != 0) {
            return error;
        }
    }
}

int usleep(useconds_t microSeconds) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::usleep(microSeconds);
    }
    const int error = SleepSimulated(*state, microSeconds * NanoSecondsPerMicroSecond, nullptr);
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? 0 : -1;
}

unsigned sleep(unsigned seconds) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::sleep(seconds);
    }
    std::int64_t left = 0;
    SleepSimulated(*state, seconds * NanoSecondsPerSecond, &left);
    return static_cast<unsigned>((left + NanoSecondsPerSecond - 1) / NanoSecondsPerSecond);
}

// A time with the nanoseconds of a second or more is refused by libc; left to it.
int sem_timedwait(sem_t* semaphore, const timespec* until) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until)) {
        return Real::sem_timedwait(semaphore, until);
    }
    return SemaphoreWait(*state, semaphore, CLOCK_REALTIME, *until);
}

int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* until) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until) || (!IsWallClock(clock) && !IsSteadyClock(clock))) {
        return Real::sem_clockwait(semaphore, clock, until);
    }
    return SemaphoreWait(*state, semaphore, clock, *until);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until)) {
        return Real::pthread_cond_timedwait(condition, mutex, until);
    }
    return ConditionWait(*state, condition, mutex, ClockOf(condition), *until);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until) || (!IsWallClock(clock) && !IsSteadyClock(clock))) {
        return Real::pthread_cond_clockwait(condition, mutex, clock, until);
    }
    return ConditionWait(*state, condition, mutex, clock, *until);
}

int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* until) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until)) {
        return Real::pthread_mutex_timedlock(mutex, until);
    }
    return WaitInPieces(*state, CLOCK_REALTIME, *until, CLOCK_REALTIME, [mutex](const timespec& realUntil) {
        return Real::pthread_mutex_timedlock(mutex, &realUntil);
    });
}

int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const timespec* until) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr || !Valid(*until) || (!IsWallClock(clock) && !IsSteadyClock(clock))) {
        return Real::pthread_mutex_clocklock(mutex, clock, until);
    }
    return WaitInPieces(*state, clock, *until, CLOCK_REALTIME, [mutex](const timespec& realUntil) {
        return Real::pthread_mutex_timedlock(mutex, &realUntil);
    });
}
}
