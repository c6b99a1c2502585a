// The settings of the measurement, as its section of the settings file gives them. Plain values; the owner
// says which thread.
#pragma once

#include <cstdint>

class ConfigurationBase;

struct MeasurementSettings {
    // Every key has to be there: a missing one ends the process with a line that names it.
    void Read(const ConfigurationBase& section);

    std::uint32_t primeCycleCount = 0;  // revolutions
    std::uint32_t emitterChannel = 0;
    double emitterDefaultFrequency = 1000.0;  // hertz
    double emitterDefaultDutyCycle = 50.0;    // percent; each finished cycle leaves its own here
    double colorimeterCellConstant = 1714.818182;
    std::uint32_t sampleSwitchDelay = 0;  // milliseconds
    double sampleSwitchDutyCycle = 0.0;   // percent
    double findHomeSpeed = 360.0;         // degrees a second
    std::uint32_t darkHighRejectNum = 0;
    std::uint32_t darkLowRejectNum = 0;
    std::uint32_t refHighRejectNum = 0;
    std::uint32_t refLowRejectNum = 0;
    std::uint32_t sampleHighRejectNum = 0;
    std::uint32_t sampleLowRejectNum = 0;
    double detectorOutputLevel = 0.0;     // counts
    double detectorOutputLevelDev = 0.0;  // percent of the level
    double ledDutycycleAdjustStep = 0.0;  // percent
    std::uint32_t ledSettleTime = 0;      // milliseconds
};
