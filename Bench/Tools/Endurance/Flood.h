// Random bytes on both links for a given time. The analyzer must not end, stop or grow.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Bench/Tools/Endurance/Footprint.h"
#include "Bench/Tools/Endurance/Random.h"
#include "Bench/Tools/Endurance/SystemUnderTest.h"

namespace Bench {

struct FloodPlan {
    double seconds = 3600.0;  // of real time
    std::uint32_t seed = 1;
    double rate = 50.0;  // pieces per second on each link
};

// One thread; once.
class Flood {
public:
    // `system` has been started with StartInTestMode.
    Flood(SystemUnderTest& system, const FloodPlan& plan) : m_system(system), m_plan(plan), m_random(plan.seed) {}

    // Runs until the time is over, `stop` is not 0 or something is wrong: then returns false with the reason in
    // `trouble`.
    bool Run(const volatile int& stop, std::string& trouble);
    // The line of figures.
    std::string Describe() const;

private:
    using Clock = std::chrono::steady_clock;

    bool Tick(std::string& trouble);
    void SendToFrontEndLink();
    void SendToTestLink();
    std::string TestPiece();
    bool StillResets(std::string& trouble);
    bool ResetOnRequest();
    double Elapsed() const { return std::chrono::duration<double>(Clock::now() - m_start).count(); }

    SystemUnderTest& m_system;
    const FloodPlan m_plan;
    Random m_random;
    FootprintSeries m_series;
    Clock::time_point m_start;
    double m_elapsed = 0.0;
    double m_nextReading = 0.0;
    double m_lastGeneration = 0.0;  // seconds of the board
    std::size_t m_generations = 0;
    std::uint64_t m_pieces = 0;  // that were to be sent on each link
    std::uint64_t m_frontEndBytes = 0;
    std::uint64_t m_testBytes = 0;
};

}  // namespace Bench
