// Clocks and sleeps. The sanitizers call them too, so nothing here allocates or locks.
#include <semaphore.h>
#include <sys/time.h>

#include <algorithm>
#include <ctime>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

// A long wait is split into waits of this real length, so that a change of the clock's speed takes effect.
constexpr std::int64_t Slice = 100000000;
constexpr std::int64_t MaxSlice = 1000 * NanoSecondsPerSecond;  // if the speed is held
constexpr std::int64_t ConditionSlice = 1000000000;
constexpr std::int64_t NanoSecondsPerMicroSecond = 1000;

bool Valid(const timespec& time) { return time.tv_nsec >= 0 && time.tv_nsec < NanoSecondsPerSecond; }

bool IsWallClock(clockid_t clock) { return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE; }

bool IsSteadyClock(clockid_t clock) {
    return clock == CLOCK_MONOTONIC || clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_MONOTONIC_RAW ||
           clock == CLOCK_BOOTTIME;
}

// The board that waits until that time; null passes the call on, which libc also refuses if the time is invalid.
BoardState* BoardFor(clockid_t clock, const timespec& until) {
    return Valid(until) && (IsWallClock(clock) || IsSteadyClock(clock)) ? AttachedState() : nullptr;
}

std::int64_t Now(const BoardState& state, clockid_t clock) {
    return IsWallClock(clock) ? WallNow(state.clock) : MonotonicNow(state.clock);
}

// Waits on a lock or a queue until a simulated moment, in pieces of the real CLOCK_REALTIME. `wait` takes the real
// moment and returns 0 or an error number.
template <typename Wait>
int WaitInPieces(const BoardState& state, clockid_t clock, const timespec& until, Wait wait) {
    for (;;) {
        const std::int64_t left = std::max<std::int64_t>(NanoSecondsOf(until) - Now(state, clock), 0);
        const std::int64_t real = std::min(ToReal(state.clock, left), state.clock.held.load() ? MaxSlice : Slice);
        timespec realNow{};
        Real::clock_gettime(CLOCK_REALTIME, &realNow);
        const timespec realUntil = TimespecOf(NanoSecondsOf(realNow) + real);
        const int error = wait(realUntil);
        if (error != ETIMEDOUT || NanoSecondsOf(until) <= Now(state, clock)) {
            return error;
        }
    }
}

int SemaphoreWait(BoardState& state, sem_t* semaphore, clockid_t clock, const timespec& until) {
    return Answer(WaitInPieces(state, clock, until, [semaphore](const timespec& realUntil) {
        return Real::sem_timedwait(semaphore, &realUntil) == 0 ? 0 : errno;
    }));
}

int MutexWait(BoardState& state, pthread_mutex_t* mutex, clockid_t clock, const timespec& until) {
    return WaitInPieces(state, clock, until, [mutex](const timespec& realUntil) {
        return Real::pthread_mutex_timedlock(mutex, &realUntil);
    });
}

// One piece only: a wait that ends early is a spurious wake-up, which every caller must expect. Waiting again without
// checking the condition could miss a wake-up.
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

// 0, or EINTR with what is left in `remainder`.
int SleepFor(BoardState& state, const timespec& request, timespec* remainder) {
    std::int64_t left = 0;
    const int error = SleepSimulated(state, NanoSecondsOf(request), &left);
    if (error != 0 && remainder != nullptr) {
        *remainder = TimespecOf(left);
    }
    return error;
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
    if (const int error = IsWallClock(clock) ? CountCall(*state, "clock_gettime") : 0; error != 0) {
        return Answer(error);
    }
    *time = TimespecOf(Now(*state, clock));
    return 0;
}

int gettimeofday(timeval* time, void* zone) noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gettimeofday(time, zone);
    }
    const timespec now = TimespecOf(WallNow(state->clock));
    *time = {now.tv_sec, static_cast<suseconds_t>(now.tv_nsec / NanoSecondsPerMicroSecond)};
    return 0;
}

time_t time(time_t* result) noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::time(result);
    }
    const time_t now = TimespecOf(WallNow(state->clock)).tv_sec;
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

// Simulated time since the start of the run, not processor time: the simulated duration of a busy wait does not depend
// on the machine's load.
clock_t clock() noexcept {
    const BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::clock();
    }
    return static_cast<clock_t>((MonotonicNow(state->clock) - MonotonicAtStart) / NanoSecondsPerMicroSecond);
}

int nanosleep(const timespec* request, timespec* remainder) {
    BoardState* state = BoardFor(CLOCK_MONOTONIC, *request);
    if (state == nullptr || request->tv_sec < 0) {
        return Real::nanosleep(request, remainder);
    }
    return Answer(SleepFor(*state, *request, remainder));
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* request, timespec* remainder) {
    BoardState* state = BoardFor(clock, *request);
    if (state == nullptr || request->tv_sec < 0) {
        return Real::clock_nanosleep(clock, flags, request, remainder);
    }
    if ((flags & TIMER_ABSTIME) == 0) {
        return SleepFor(*state, *request, remainder);
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
    return Answer(SleepSimulated(*state, microSeconds * NanoSecondsPerMicroSecond, nullptr));
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

int sem_timedwait(sem_t* semaphore, const timespec* until) {
    BoardState* state = BoardFor(CLOCK_REALTIME, *until);
    return state == nullptr ? Real::sem_timedwait(semaphore, until)
                            : SemaphoreWait(*state, semaphore, CLOCK_REALTIME, *until);
}

int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* until) {
    BoardState* state = BoardFor(clock, *until);
    return state == nullptr ? Real::sem_clockwait(semaphore, clock, until)
                            : SemaphoreWait(*state, semaphore, clock, *until);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    BoardState* state = BoardFor(CLOCK_REALTIME, *until);
    return state == nullptr ? Real::pthread_cond_timedwait(condition, mutex, until)
                            : ConditionWait(*state, condition, mutex, ClockOf(condition), *until);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    BoardState* state = BoardFor(clock, *until);
    return state == nullptr ? Real::pthread_cond_clockwait(condition, mutex, clock, until)
                            : ConditionWait(*state, condition, mutex, clock, *until);
}

int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* until) noexcept {
    BoardState* state = BoardFor(CLOCK_REALTIME, *until);
    return state == nullptr ? Real::pthread_mutex_timedlock(mutex, until)
                            : MutexWait(*state, mutex, CLOCK_REALTIME, *until);
}

int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const timespec* until) noexcept {
    BoardState* state = BoardFor(clock, *until);
    return state == nullptr ? Real::pthread_mutex_clocklock(mutex, clock, until)
                            : MutexWait(*state, mutex, clock, *until);
}
}
