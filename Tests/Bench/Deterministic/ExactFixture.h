// A test in exact time: its threads are those of the simulation.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "Bench/Board/BoardClock.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/ExactTime.h"

class ExactTest : public BoardTest {
protected:
    ExactTest() : BoardTest(QuietInExactTime()) {}

    static constexpr std::int64_t Second = Bench::NanoSecondsPerSecond;

    static std::int64_t Now() { return Bench::Simulation::Now(); }

    // That clock's time so many seconds from now.
    timespec In(double seconds, clockid_t clock = CLOCK_REALTIME) const {
        const std::int64_t now = clock == CLOCK_REALTIME ? Board().WallNanoSeconds() : Now();
        return Bench::TimespecOf(now + static_cast<std::int64_t>(seconds * 1e9));
    }

    // Simulated nanoseconds.
    template <typename Action>
    static std::int64_t Duration(Action action) {
        const std::int64_t begin = Now();
        action();
        return Now() - begin;
    }

    static void Rest(double seconds) {
        const timespec time = Bench::TimespecOf(static_cast<std::int64_t>(seconds * 1e9));
        nanosleep(&time, nullptr);
    }

private:
    ExactTime m_time;
};

inline Bench::BoardSetup ExactBoard(std::uint64_t seed, const std::string& policy = "random") {
    Bench::BoardSetup setup;
    setup.noise = false;
    setup.exact.emplace();
    setup.exact->seed = seed;
    setup.exact->policy = policy;
    return setup;
}
