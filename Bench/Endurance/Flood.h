// Random bytes on both links for a given time: nothing may end the program, stop it or make it grow.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Bench/Endurance/Dice.h"
#include "Bench/Endurance/Footprint.h"
#include "Bench/Endurance/Subject.h"

namespace Bench {

struct FloodPlan {
    double seconds = 3600.0;  // of real time
    std::uint32_t seed = 1;
    double rate = 50.0;  // pieces a second on each link
};

// One thread; once.
class Flood {
public:
    // The subject has been started, with a configuration that goes to the test state by itself.
    Flood(Subject& subject, const FloodPlan& plan) : m_subject(subject), m_plan(plan), m_dice(plan.seed) {}

    // Until the time is over or something is wrong, which `trouble` then tells. Signals set `stop`.
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

    Subject& m_subject;
    const FloodPlan m_plan;
    Dice m_dice;
    FootprintSeries m_series;
    Clock::time_point m_start;
    double m_elapsed = 0.0;
    double m_nextReading = 0.0;
    double m_lastGeneration = 0.0;  // seconds of the board
    std::size_t m_generations = 0;
    std::uint64_t m_pieces = 0;  // sent on each link, or tried
    std::uint64_t m_frontEndBytes = 0;
    std::uint64_t m_testBytes = 0;
};

}  // namespace Bench
