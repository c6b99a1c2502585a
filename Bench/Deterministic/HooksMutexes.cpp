// Mutexes. A thread that waits for one is woken when it is given back, and tries again.
#include <unistd.h>

#include <cerrno>

#include "Bench/Deterministic/Locks.h"
#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

namespace Bench::Simulation {

namespace {

// One that checks for errors refuses a second lock by its owner. glibc keeps kind and owner here.
bool IsOwnCheckedMutex(const pthread_mutex_t* mutex) {
    constexpr int KindBits = 3;
    return (mutex->__data.__kind & KindBits) == PTHREAD_MUTEX_ERRORCHECK_NP && mutex->__data.__owner == gettid();
}

int TimedLock(pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    Point(Event::Lock);
    return LockMutex(mutex, clock, until);
}

}  // namespace

int LockMutex(pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    for (;;) {
        const int error = Next::pthread_mutex_trylock(mutex);
        if (error != EBUSY) {
            return error;
        }
        if (IsOwnCheckedMutex(mutex)) {
            return EDEADLK;
        }
        const std::int64_t deadline = until == nullptr ? Scheduler::Forever : MomentOf(clock, *until);
        if (deadline <= Now()) {
            return ETIMEDOUT;
        }
        Block(Wait::Mutex, mutex, deadline);
    }
}

int UnlockMutex(pthread_mutex_t* mutex) {
    const int error = Next::pthread_mutex_unlock(mutex);
    if (error == 0) {
        Wake(Wait::Mutex, mutex);
    }
    return error;
}

}  // namespace Bench::Simulation

using namespace Bench;

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    return Simulation::Runs() ? Simulation::TimedLock(mutex, CLOCK_REALTIME, nullptr) : Next::pthread_mutex_lock(mutex);
}

int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    if (Simulation::Runs()) {
        Simulation::Point(Event::Lock);
    }
    return Next::pthread_mutex_trylock(mutex);
}

int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* until) noexcept {
    return Simulation::Runs() && Simulation::Valid(*until) ? Simulation::TimedLock(mutex, CLOCK_REALTIME, until)
                                                           : Next::pthread_mutex_timedlock(mutex, until);
}

int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const timespec* until) noexcept {
    return Simulation::Runs() && Simulation::Valid(*until) ? Simulation::TimedLock(mutex, clock, until)
                                                           : Next::pthread_mutex_clocklock(mutex, clock, until);
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    if (!Simulation::Runs()) {
        return Next::pthread_mutex_unlock(mutex);
    }
    const int error = Simulation::UnlockMutex(mutex);
    Simulation::Point(Event::Unlock);
    return error;
}
}
