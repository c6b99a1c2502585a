// From the light to the card: how long after the last reading of a cycle its record is written and flushed. One thread.
#pragma once

#include <string>
#include <vector>

#include "Bench/Measure/Rig.h"

namespace Bench {

// The configuration with every wait of a cycle cut short, but for its last step.
std::string WithShortSteps(const std::string& configuration);

struct RecordTime {
    double seconds = 0.0;        // from the last reading to the record
    double deviceSeconds = 0.0;  // of them, what the cycle's end spent in the board's device files
};

// Sends the analyzer into RUNNING_STATE and gives those of so many cycles. Nothing, with a sentence in `error`, where
// they don't come.
std::vector<RecordTime> LampToDisk(Rig& rig, int cycles, std::string& error);

}  // namespace Bench
