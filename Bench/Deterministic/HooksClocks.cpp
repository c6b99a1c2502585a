// Clocks. They are the board's; reading one takes simulated time, so that a thread that watches a clock sees it go on.
#include <sys/time.h>

#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

using namespace Bench;

namespace {

void ReadClock() {
    if (Simulation::Runs()) {
        Simulation::Point(Event::Clock, Simulation::ClockCost);
    }
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    ReadClock();
    return Next::clock_gettime(clock, time);
}

int gettimeofday(timeval* time, void* zone) noexcept {
    ReadClock();
    return Next::gettimeofday(time, zone);
}

time_t time(time_t* result) noexcept {
    ReadClock();
    return Next::time(result);
}

clock_t clock() noexcept {
    ReadClock();
    return Next::clock();
}
}
