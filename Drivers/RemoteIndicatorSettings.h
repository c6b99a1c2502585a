// The remote indicator's sounds and the constants of its cable.
#pragma once

#include <cstdint>
#include <string>

struct RemoteIndicatorSettings {
    std::string alertFile;  // below the program directory; empty for silence
    std::string alarmFile;
    std::int32_t alertGap = 0;  // microseconds between two plays
    std::int32_t alarmGap = 0;
    float loopCurrentSenseResistance = 0.0F;  // ohms
    float loopVoltageAmpGain = 0.0F;          // loop volts for one volt measured
    float blueLEDForwardVoltageDrop = 0.0F;   // volts
    float cableResistancePerFoot = 0.0F;      // ohms
};
