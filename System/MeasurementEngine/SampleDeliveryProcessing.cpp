#include "System/MeasurementEngine/SampleDeliveryProcessing.h"

#include "Drivers/ValvePWM.h"

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
