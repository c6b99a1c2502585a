// One start, cycle, reset and stop of the analyzer on a fresh board, with one call made to fail.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Bench/Tools/Endurance/SystemUnderTest.h"

namespace Bench {

// The best first. From `Restarted` on the analyzer needed its supervisor; from `Crashed` on it did what it may not.
enum class SweepOutcome {
    NotReached,  // so many calls were not made that time, so none has failed
    Unnoticed,   // all as without the failure
    Reported,    // the same, and a line of the log or the console reports it
    ResultLost,  // no result, or no record of it; after the reset all is well
    LinkLost,    // a link was missing; after the next reset all is well
    Restarted,   // it ended with a named error; started again, all is well
    Stuck,       // a link was missing and no reset came through: a new start was needed; then all is well
    Crashed,     // it ended otherwise
    Hung,        // it went on and nothing brought it back
    Grew,        // descriptors, threads or children are left over
    RecordLost,  // an earlier record is missing on the card
    Count
};
const char* NameOf(SweepOutcome outcome);
bool IsAllowed(SweepOutcome outcome);

struct SweepReport {
    SweepOutcome outcome = SweepOutcome::Unnoticed;
    std::string detail;  // what was told, or what is wrong
};

// What a run without a failure is like.
struct SweepBaseline {
    std::map<std::string, std::uint64_t> calls;  // by kind
    std::set<std::string> lines;                 // of log and console, without digits
    Footprint footprint;                         // in the test state behind the reset
};

// One thread; a run at a time.
class SweepCase {
public:
    SweepCase(const Places& places, double speed) : m_places(places), m_speed(speed) {}

    // False with a sentence in `trouble` where even that goes wrong.
    bool RunBaseline(SweepBaseline& baseline, std::string& trouble);
    SweepReport Try(const std::string& kind, int n, const SweepBaseline& baseline);

private:
    struct Course {
        bool isConnected = false;
        bool isInTestState = false;
        bool hasResult = false;
        bool hasRecord = false;
        bool hasEnded = false;
        std::string records;  // of the day file by then, whole lines
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
    const double m_speed;
};

}  // namespace Bench
