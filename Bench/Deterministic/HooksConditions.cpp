// Condition variables. The simulation alone knows who waits; the real ones are never waited on.
#include <cerrno>

#include "Bench/Deterministic/Locks.h"
#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

namespace Bench::Simulation {

namespace {

// 0, as at any wake-up, or ETIMEDOUT. Giving the mutex back and waiting are one step: nothing runs between them.
int WaitForCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    Point(Event::ConditionWait);
    if (const int error = UnlockMutex(mutex); error != 0) {
        return error;
    }
    const std::int64_t deadline = until == nullptr ? Scheduler::Forever : MomentOf(clock, *until);
    bool woken = false;
    if (deadline > Now()) {
        woken = Block(Wait::Condition, condition, deadline);
    } else {
        Point(Event::Yield);  // who waits for the mutex can get it, also if this thread asks again and again
    }
    const int error = LockMutex(mutex, CLOCK_REALTIME, nullptr);
    return error == 0 && !woken ? ETIMEDOUT : error;
}

// The clock of a condition variable's attributes, where glibc keeps it.
clockid_t ClockOf(const pthread_cond_t* condition) {
    constexpr unsigned MonotonicFlag = 2;
    return (condition->__data.__wrefs & MonotonicFlag) != 0 ? CLOCK_MONOTONIC : CLOCK_REALTIME;
}

}  // namespace

}  // namespace Bench::Simulation

using namespace Bench;

extern "C" {

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    return Simulation::Runs() ? Simulation::WaitForCondition(condition, mutex, CLOCK_REALTIME, nullptr)
                              : Next::pthread_cond_wait(condition, mutex);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    return Simulation::Runs() && Simulation::Valid(*until)
               ? Simulation::WaitForCondition(condition, mutex, Simulation::ClockOf(condition), until)
               : Next::pthread_cond_timedwait(condition, mutex, until);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    return Simulation::Runs() && Simulation::Valid(*until)
               ? Simulation::WaitForCondition(condition, mutex, clock, until)
               : Next::pthread_cond_clockwait(condition, mutex, clock, until);
}

int pthread_cond_signal(pthread_cond_t* condition) noexcept {
    if (!Simulation::Runs()) {
        return Next::pthread_cond_signal(condition);
    }
    Simulation::Wake(Wait::Condition, condition, 1);
    Simulation::Point(Event::ConditionSignal);
    return 0;
}

int pthread_cond_broadcast(pthread_cond_t* condition) noexcept {
    if (!Simulation::Runs()) {
        return Next::pthread_cond_broadcast(condition);
    }
    Simulation::Wake(Wait::Condition, condition);
    Simulation::Point(Event::ConditionSignal);
    return 0;
}
}
