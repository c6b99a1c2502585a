#include "System/MeasurementEngine/EmitterProcessing.h"

#include "Drivers/PwmChannel.h"

void EmitterProcessing::SetDutyCycle(float dutyCycle) {
    if (m_pwm != nullptr) {
        m_pwm->SetDutyCycle(dutyCycle);
    }
}

void EmitterProcessing::SetFrequency(float frequency) {
    if (m_pwm != nullptr) {
        m_pwm->SetFrequency(frequency);
    }
}

void EmitterProcessing::Work() {
    const bool on = GetStep()->ledOn;
    if (m_pwm->IsEnabled() != on) {
        m_pwm->Enable(on);
    }
}
