// What one step of the measurement cycle does. Constant after Fill, so any thread may read it.
#pragma once

#include <cstdint>

#include "Frameworks/Configuration/ItemInfoContainer.h"
#include "System/Messages/StepType.h"

struct StepParameters {
    // Reads the nine items of a step. A missing item ends the process with a line that names it. Returns false for a
    // null container.
    bool Fill(const ItemInfoContainer* items);

    StepType stepType = NO_STEP;
    std::uint32_t duration = 0;  // ms: sampling, run of the stir motor, upper limit of the pump's turn
    bool ledOn = false;          // level: stays until a later step changes it
    bool stirringOn = false;
    bool adcMonitorOn = false;       // the detector is sampled and the samples are sent
    bool findStartPosition = false;  // the pump homes instead of moving by an angle
    bool sampleValveOn = false;      // level: stays until a later step changes it
    float motorAngle = 0.0F;         // degrees
    std::uint32_t motorSpeed = 0;    // degrees a second; 0: the pump does nothing
};
