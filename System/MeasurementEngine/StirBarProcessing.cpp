#include "System/MeasurementEngine/StirBarProcessing.h"

#include "Drivers/StepperDriverBase.h"

namespace {

constexpr float StirDutyCycle = 50.0F;
constexpr float StirFrequency = 640.0F;  // steps a second

}  // namespace

void StirBarProcessing::Work() { m_motor->RunForTime(StirDutyCycle, StirFrequency, GetStep()->duration, false); }
