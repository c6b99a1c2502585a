// Threads: made, joined and detached.
#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

using namespace Bench;

extern "C" {

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept {
    return Simulation::Runs() ? Simulation::Create(thread, attributes, routine, argument)
                              : Next::pthread_create(thread, attributes, routine, argument);
}

int pthread_join(pthread_t thread, void** result) {
    if (Simulation::Runs()) {
        Simulation::AwaitEnd(thread);
    }
    return Next::pthread_join(thread, result);
}

int pthread_detach(pthread_t thread) noexcept {
    if (Simulation::Runs()) {
        Simulation::Detach(thread);
    }
    return Next::pthread_detach(thread);
}

int sched_yield() noexcept {
    if (Simulation::Runs()) {
        Simulation::Point(Event::Yield, Simulation::ClockCost);
        return 0;
    }
    return Next::sched_yield();
}
}
