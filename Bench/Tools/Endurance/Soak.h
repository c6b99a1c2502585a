// The analyzer in exact time under the commands and faults of a plan, until so many cycles, resets or simulated days
// have passed. It must not end or grow, must obey each reset, and must record every result that it sends to the front
// end.
#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include "Bench/Tools/Endurance/Footprint.h"
#include "Bench/Tools/Endurance/ResultLedger.h"
#include "Bench/Tools/Endurance/SoakPlan.h"
#include "Bench/Tools/Endurance/SystemUnderTest.h"

namespace Bench {

struct SoakGoals {
    std::uint64_t cycles = 0;
    std::uint64_t resets = 0;
    double days = 0.0;
};

// One thread; once.
class Soak {
public:
    // `system` has been started. `draw` gives the events in order; nothing: there are no more.
    using Draw = std::function<std::optional<SoakEvent>()>;
    Soak(SystemUnderTest& system, Draw draw, const SoakGoals& goals);

    // Runs until all goals are met, `stop` is not 0 or something is wrong: then returns false with the reason in
    // `trouble`.
    bool Run(const volatile int& stop, std::string& trouble);
    // After a run in which all was well: set to running, the analyzer measures what is in the water, without noise.
    bool EndsWell(std::string& trouble);
    // The line of figures.
    std::string Describe() const;

private:
    bool IsDone() const;
    bool Step(std::string& trouble);
    bool Perform(const SoakEvent& event, std::string& trouble);
    bool Reset(bool byStation, std::string& trouble);
    bool TryReset(bool byStation);
    bool KeepGoing(std::string& trouble);
    bool JudgeResults(std::string& trouble);
    bool IsExcused(const ResultLedger::Missing& result) const;
    bool SettleResults(std::string& trouble);
    bool AtRest(std::optional<Footprint>& footprint, std::string& trouble);
    bool JudgeGrowth(std::string& trouble) const;
    std::string DescribeFootprints() const;
    bool SavedHours(std::string& trouble);
    void Poll();
    void Measure();

    SystemUnderTest& m_system;
    const SoakGoals m_goals;
    Draw m_draw;
    std::optional<SoakEvent> m_next;
    double m_delay = 0.0;  // of the events, in seconds
    ResultLedger m_ledger;
    FootprintSeries m_series;
    std::optional<Footprint> m_first;  // after a reset, at rest: at the start and at the end
    std::optional<Footprint> m_last;
    std::ofstream m_events;  // those so far, in the bench folder
    double m_nextReading = 0.0;
    std::size_t m_frames = 0;  // read
    std::uint64_t m_resets = 0;
    std::uint64_t m_faults = 0;
    std::uint64_t m_commands = 0;
    std::uint64_t m_excused = 0;  // results without a record during a fault of the card
    std::uint64_t m_cut = 0;      // during a reset
    double m_lastResult = 0.0;
    double m_runRequested = 0.0;
    double m_lastReset = 0.0;  // for want of results
    double m_resetBegin = -1.0;
    double m_resetEnd = -1.0;
    std::size_t m_answers = 0;
    int m_cardFaults = 0;
    double m_cardFaultEnd = -1e9;
    double m_hours = 0.0;    // as saved
    double m_setBack = 0.0;  // seconds of clock-back
};

}  // namespace Bench
