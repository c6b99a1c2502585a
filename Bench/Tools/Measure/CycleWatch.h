// Cycles in time with the clock, watched from the outside: their lengths, what the analyzer does between two readings
// of the detector. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Bench/Tools/Measure/CycleWaits.h"
#include "Bench/Tools/Measure/Fixture.h"

namespace Bench {

// How the board's trace tells of a reading of the detector.
inline constexpr const char* ReadingAct = "spi read ";

struct CycleLength {
    double seconds = 0.0;     // from its first act on the board to that of the next cycle
    double prescribed = 0.0;  // the sum of its waits
    int trials = 0;           // of the LED adjustment
};

// Stretches of a fifth of a second in which the analyzer touched nothing on the board.
struct IdleLoad {
    double seconds = 0.0;
    std::uint64_t switches = 0;
    double processorSeconds = 0.0;

    double SwitchesPerSecond() const { return seconds > 0.0 ? static_cast<double>(switches) / seconds : 0.0; }
    double ProcessorPercent() const { return seconds > 0.0 ? 100.0 * processorSeconds / seconds : 0.0; }
};

struct CyclesSeen {
    std::vector<CycleLength> lengths;
    IdleLoad sampling;  // between two readings of one step
    IdleLoad waiting;   // in steps that are not sampled
};

// Sends the analyzer into RUNNING_STATE and watches until so many cycles are done. False with a sentence in `error`
// where they don't come.
bool WatchCycles(Fixture& fixture, const CycleSettings& settings, int cycles, CyclesSeen& seen, std::string& error);

}  // namespace Bench
