#include "Drivers/Wait.h"

#include <cerrno>
#include <ctime>

namespace {

constexpr std::uint32_t MillisecondsInSecond = 1000;
constexpr long NanoSecondsPerMillisecond = 1000000;
constexpr std::uint64_t ClocksPerMillisecond = CLOCKS_PER_SEC / 1000;

// Unsigned, so that the difference holds across the wrap that a 32-bit clock_t makes every 72 minutes of work.
unsigned long ProcessorClock() { return static_cast<unsigned long>(std::clock()); }

}  // namespace

void SleepFor(std::uint32_t milliseconds) {
    timespec rest{};
    rest.tv_sec = static_cast<std::time_t>(milliseconds / MillisecondsInSecond);
    rest.tv_nsec = static_cast<long>(milliseconds % MillisecondsInSecond) * NanoSecondsPerMillisecond;
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

void SpinFor(std::uint32_t milliseconds) {
    const std::uint64_t target = milliseconds * ClocksPerMillisecond;
    std::uint64_t spent = 0;
    unsigned long last = ProcessorClock();
    while (spent < target) {
        const unsigned long now = ProcessorClock();
        spent += now - last;
        last = now;
    }
}
