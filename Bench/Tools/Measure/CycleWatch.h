// Watches cycles in real time: their lengths, and the load between two readings of the detector. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Bench/Tools/Measure/CycleWaits.h"
#include "Bench/Tools/Measure/Fixture.h"

namespace Bench {

// Start of a reading of the detector in the board's trace.
inline constexpr const char* ReadingAct = "spi read ";

struct CycleLength {
    double seconds = 0.0;     // from its first action on the board to that of the next cycle
    double prescribed = 0.0;  // the sum of its waits
    int trials = 0;           // of the LED adjustment
};

// Fifths of a second without an action on the board.
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

// Sets the analyzer to running and watches so many cycles. Returns false with the reason in `error` if they don't come.
bool WatchCycles(Fixture& fixture, const CycleSettings& settings, int cycles, CyclesSeen& seen, std::string& error);

}  // namespace Bench
