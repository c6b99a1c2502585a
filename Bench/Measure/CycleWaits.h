// How long a cycle has to wait, by the settings alone: the sum of what its steps prescribe. Reads the settings as text
// of its own and knows nothing of the analyzer's code, so that the one can be held against the other. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Bench {

struct StepSettings {
    std::string name;       // as in the settings
    double duration = 0.0;  // milliseconds
    bool sampled = false;   // the detector is read
    bool stirred = false;
    bool valveOpen = false;
    bool homed = false;       // the pump looks for its start position
    double motorAngle = 0.0;  // degrees
    double motorSpeed = 0.0;  // degrees a second; 0: the pump has nothing to do
};

struct CycleSettings {
    std::vector<StepSettings> steps;  // in the order of execution
    double settle = 0.0;              // milliseconds before a trial of the LED adjustment
    double switchDelay = 0.0;         // milliseconds that the valve opens with full power
};

// Nothing, with a sentence in `error`, where a step or an item of it is missing.
std::optional<CycleSettings> ReadCycleSettings(const std::string& configuration, std::string& error);

struct CycleWaits {
    double milliseconds = 0.0;
    double pumpAngle = 0.0;  // degrees behind the home edge, where the cycle leaves the pump
};

// Of one cycle that finds the pump at that angle and needs so many trials of the LED adjustment.
CycleWaits PrescribedWaits(const CycleSettings& settings, double pumpAngle, int trials);

// Detector readings of one such cycle.
int PrescribedReadings(const CycleSettings& settings, int trials);
int ReadingsOfTrial(const CycleSettings& settings);

}  // namespace Bench
