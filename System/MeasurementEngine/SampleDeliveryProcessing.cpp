#include "System/MeasurementEngine/SampleDeliveryProcessing.h"

#include "Drivers/ValvePWM.h"

namespace {}  // namespace

std::int32_t SampleDeliveryProcessing::Exit() {
    ForgetStep();
    return StepWorker::Exit();
}

void SampleDeliveryProcessing::Work() {
    if (GetStep()->sampleValveOn) {
        m_valve->ValveOn(ValvePWM::OpeningDutyCycle);
    } else {
        m_valve->ValveOff();
    }
}
