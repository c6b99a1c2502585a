#include "System/Messages/StepParameters.h"

bool StepParameters::Fill(const ItemInfoContainer* items) {
    if (items == nullptr) {
        return false;
    }
    stepType = FindStepType(items->RequireValue("Step"));
    duration = items->RequireValue("Duration").ToUnsigned();
    ledOn = items->RequireValue("LED On").ToBool();
    stirringOn = items->RequireValue("Stirring On").ToBool();
    sampleValveOn = items->RequireValue("Sample Valve On").ToBool();
    adcMonitorOn = items->RequireValue("ADC Monitor On").ToBool();
    findStartPosition = items->RequireValue("Find Start Position").ToBool();
    motorAngle = items->RequireValue("Motor Angle").ToFloat();
    motorSpeed = items->RequireValue("Motor Speed").ToUnsigned();
    return true;
}
