// One start, cycle, reset and stop of the analyzer on a fresh board in exact time, with one failed call.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Bench/Tools/Endurance/SystemUnderTest.h"

namespace Bench {

// The best first. From `Restarted` on a supervisor is needed; from `Crashed` on the outcome is not allowed.
enum class SweepOutcome {
    NotReached,  // fewer calls were made, so none failed
    Unnoticed,   // as without the failure
    Reported,    // the same, and a line of the log or the console reports it
    ResultLost,  // no result, or no record of it; well after the reset
    LinkLost,    // a link was missing; well after the next reset
    Restarted,   // it ended with a named error; well after a restart
    Stuck,       // no link was left for a reset; well after a restart
    Crashed,     // it ended in any other way
    Hung,        // nothing brought it back
    Grew,        // more descriptors, threads or children than before
    RecordLost,  // an earlier record is missing on the card
    Count
};
const char* NameOf(SweepOutcome outcome);
bool IsAllowed(SweepOutcome outcome);

struct SweepReport {
    SweepOutcome outcome = SweepOutcome::Unnoticed;
    std::string detail;  // the reported line, or what is wrong
};

// A run without a failure.
struct SweepBaseline {
    std::map<std::string, std::uint64_t> calls;  // by kind
    std::set<std::string> lines;                 // of log and console, without digits
    Footprint footprint;                         // in the test state after the reset
};

// One thread; a run at a time.
class SweepCase {
public:
    explicit SweepCase(const Places& places) : m_places(places) {}

    // Returns false with the reason in `trouble` if that run fails.
    bool RunBaseline(SweepBaseline& baseline, std::string& trouble);
    SweepReport Try(const std::string& kind, int n, const SweepBaseline& baseline);

private:
    struct Course {
        bool isConnected = false;
        bool isInTestState = false;
        bool hasResult = false;
        bool hasRecord = false;
        bool hasEnded = false;
        std::string records;  // whole lines of the day file by then
        std::string end;
    };

    bool Prepare(SystemUnderTest& system, std::string& trouble) const;
    Course Live(SystemUnderTest& system) const;
    bool ReachTestState(SystemUnderTest& system, std::size_t generation, double seconds) const;
    bool Reset(SystemUnderTest& system) const;
    bool Settles(SystemUnderTest& system, const Footprint& wanted, Footprint& seen) const;
    SweepReport Judge(SystemUnderTest& system, const Course& course, const SweepBaseline& baseline) const;
    SweepReport Recover(SystemUnderTest& system, const Course& course, const SweepBaseline& baseline) const;
    static std::set<std::string> Lines(const SystemUnderTest& system);
    static std::set<std::string> NewLines(const SystemUnderTest& system, const SweepBaseline& baseline);

    const Places m_places;
};

}  // namespace Bench
