// How long a cycle has to wait according to the settings: the sum of what its steps prescribe. It shares only the names
// of the steps with the analyzer, so each can be compared with the other. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Bench/Common/SettingsFile.h"

namespace Bench {

struct StepSettings {
    std::string name;       // as in the settings
    double duration = 0.0;  // milliseconds
    bool sampled = false;   // the detector is read
    bool stirred = false;
    bool valveOpen = false;
    bool homed = false;       // the pump searches its start position
    double motorAngle = 0.0;  // degrees
    double motorSpeed = 0.0;  // degrees a second; 0: the pump has nothing to do
};

struct CycleSettings {
    std::vector<StepSettings> steps;  // in the order of execution
    double settle = 0.0;              // milliseconds before each trial of the LED adjustment
    double switchDelay = 0.0;         // milliseconds of full power at each opening of the valve
};

// Nothing, with the reason in `error`, if a step or one of its items is missing, or if a step is unknown.
std::optional<CycleSettings> ReadCycleSettings(const SettingsFile& file, std::string& error);

struct CycleWaits {
    double milliseconds = 0.0;
    double pumpAngle = 0.0;  // degrees past the home edge, at the end of the cycle
};

// Of one cycle that starts with the pump at that angle and needs so many trials of the LED adjustment.
CycleWaits PrescribedWaits(const CycleSettings& settings, double pumpAngle, int trials);

// Detector readings of one such cycle.
int PrescribedReadings(const CycleSettings& settings, int trials);
int ReadingsOfTrial(const CycleSettings& settings);

}  // namespace Bench
