// The futexes of the C++ library: local statics, futures, waits for an atomic.
#include <linux/futex.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>

#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

namespace Bench::Simulation {

namespace {

constexpr int Operations = ~(FUTEX_PRIVATE_FLAG | FUTEX_CLOCK_REALTIME);

long WakeFutex(const std::uint32_t* word, std::uint32_t most) {
    const int woken = Wake(Wait::Futex, word, static_cast<int>(std::min<std::uint32_t>(most, Scheduler::MaxThreads)));
    Point(Event::WordWake);
    return woken;
}

// FUTEX_WAIT has a duration, FUTEX_WAIT_BITSET a moment of a clock.
std::int64_t DeadlineOf(int operation, const timespec* timeout) {
    if (timeout == nullptr) {
        return Scheduler::Forever;
    }
    const clockid_t clock = (operation & FUTEX_CLOCK_REALTIME) != 0 ? CLOCK_REALTIME : CLOCK_MONOTONIC;
    return (operation & Operations) == FUTEX_WAIT ? Now() + NanoSecondsOf(*timeout) : MomentOf(clock, *timeout);
}

long WaitForFutex(const std::uint32_t* word, int operation, std::uint32_t expected, const timespec* timeout) {
    Point(Event::WordWait);
    const std::int64_t deadline = DeadlineOf(operation, timeout);
    if (__atomic_load_n(word, __ATOMIC_SEQ_CST) != expected) {
        errno = EAGAIN;
        return -1;
    }
    if (deadline <= Now() || !Block(Wait::Futex, word, deadline)) {
        errno = ETIMEDOUT;
        return -1;
    }
    return 0;
}

}  // namespace

}  // namespace Bench::Simulation

using namespace Bench;

extern "C" long syscall(long number, ...) noexcept {
    va_list list;
    va_start(list, number);
    void* values[6];
    for (void*& value : values) {
        value = va_arg(list, void*);
    }
    va_end(list);
    if (number == SYS_futex && Simulation::Runs()) {
        const auto* word = static_cast<const std::uint32_t*>(values[0]);
        const auto operation = static_cast<int>(reinterpret_cast<std::intptr_t>(values[1]));
        const auto count = static_cast<std::uint32_t>(reinterpret_cast<std::intptr_t>(values[2]));
        switch (operation & Simulation::Operations) {
            case FUTEX_WAKE:
            case FUTEX_WAKE_BITSET:
                return Simulation::WakeFutex(word, count);
            case FUTEX_WAIT:
            case FUTEX_WAIT_BITSET:
                return Simulation::WaitForFutex(word, operation, count, static_cast<const timespec*>(values[3]));
            default:
                Simulation::Fail("a futex operation is neither a wait nor a wake-up");
        }
    }
    return Next::syscall(number, values[0], values[1], values[2], values[3], values[4], values[5]);
}
