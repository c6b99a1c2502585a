#include "System/MeasurementEngine/SampleDeliveryProcessing.h"

#include "Drivers/ValvePWM.h"

namespace {

constexpr float OpeningDutyCycle = 100.0F;

}  // namespace

std::int32_t SampleDeliveryProcessing::Exit() {
    ForgetStep();
    return StepWorker::Exit();
}

void SampleDeliveryProcessing::Work() {
    if (GetStep()->sampleValveOn) {
        m_valve->ValveOn(OpeningDutyCycle);
    } else {
        m_valve->ValveOff();
    }
}
