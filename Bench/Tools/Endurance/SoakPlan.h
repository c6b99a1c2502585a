// The events of a soak, drawn from the seed alone: which button, test command or fault at which second of the board.
// One thread.
#pragma once

#include <queue>
#include <string>
#include <vector>

#include "Bench/Peers/TestFrames.h"
#include "Bench/Tools/Endurance/Random.h"

namespace Bench {

enum class SoakAction { Button, Station, FaultOn, FaultOff, Reset };

struct SoakEvent {
    double second = 0.0;
    SoakAction action = SoakAction::Button;
    int code = 0;            // of a button
    TestRequest request;     // of the station
    std::string fault;       // on: with its value; off: its name
    bool byStation = false;  // of a reset: command 860 if the link is up

    std::string Describe() const;  // "12.5 button 2"
};

// Mean intervals in simulated seconds.
struct SoakPace {
    double events = 60.0;
    double resets = 7200.0;
    double maxFault = 400.0;
};

class SoakPlan {
public:
    SoakPlan(std::uint32_t seed, const SoakPace& pace) : m_random(seed), m_pace(pace) {
        m_nextEvent = Distance(pace.events);
        m_nextReset = Distance(pace.resets);
    }

    // In the order of their seconds.
    SoakEvent Next();

    static const std::vector<std::string>& Faults();

private:
    struct Later {
        bool operator()(const SoakEvent& left, const SoakEvent& right) const { return left.second > right.second; }
    };

    double Distance(double mean) { return mean * (0.5 + m_random.Share()); }
    SoakEvent Draw();
    TestRequest DrawRequest();

    Random m_random;
    SoakPace m_pace;
    double m_nextEvent = 0.0;
    double m_nextReset = 0.0;
    std::priority_queue<SoakEvent, std::vector<SoakEvent>, Later> m_ends;  // of faults
    std::vector<std::string> m_active;
};

}  // namespace Bench
