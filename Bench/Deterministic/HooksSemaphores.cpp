// Semaphores. A thread that waits for one is woken when it is posted, and tries again.
#include <cerrno>

#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

namespace Bench::Simulation {

namespace {

// As sem_clockwait; a null moment waits without end.
int WaitForSemaphore(sem_t* semaphore, clockid_t clock, const timespec* until) {
    Point(Event::SemaphoreWait);
    const int savedErrno = errno;
    while (Next::sem_trywait(semaphore) != 0) {
        const std::int64_t deadline = until == nullptr ? Scheduler::Forever : MomentOf(clock, *until);
        if (deadline <= Now()) {
            errno = ETIMEDOUT;
            return -1;
        }
        Block(Wait::Semaphore, semaphore, deadline);
    }
    errno = savedErrno;
    return 0;
}

}  // namespace

}  // namespace Bench::Simulation

using namespace Bench;

extern "C" {

int sem_wait(sem_t* semaphore) {
    return Simulation::Runs() ? Simulation::WaitForSemaphore(semaphore, CLOCK_REALTIME, nullptr)
                              : Next::sem_wait(semaphore);
}

int sem_trywait(sem_t* semaphore) noexcept {
    if (Simulation::Runs()) {
        Simulation::Point(Event::SemaphoreWait);
    }
    return Next::sem_trywait(semaphore);
}

int sem_timedwait(sem_t* semaphore, const timespec* until) {
    return Simulation::Runs() && Simulation::Valid(*until)
               ? Simulation::WaitForSemaphore(semaphore, CLOCK_REALTIME, until)
               : Next::sem_timedwait(semaphore, until);
}

int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* until) {
    return Simulation::Runs() && Simulation::Valid(*until) ? Simulation::WaitForSemaphore(semaphore, clock, until)
                                                           : Next::sem_clockwait(semaphore, clock, until);
}

int sem_post(sem_t* semaphore) noexcept {
    const int result = Next::sem_post(semaphore);
    if (Simulation::Runs()) {
        Simulation::Wake(Wait::Semaphore, semaphore);
        Simulation::Point(Event::SemaphorePost);
    }
    return result;
}
}
