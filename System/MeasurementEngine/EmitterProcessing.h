// Switches the LED on or off for a step; it stays so afterwards.
#pragma once

#include "System/MeasurementEngine/StepWorker.h"

class PwmChannel;

class EmitterProcessing final : public StepWorker {
public:
    EmitterProcessing() : StepWorker("EmitterProcessing") {}

    void SetPwm(PwmChannel* pwm) { m_pwm = pwm; }  // not owned

    // Percent and hertz; each leaves the channel enabled. Nothing happens without a channel.
    void SetDutyCycle(float dutyCycle);
    void SetFrequency(float frequency);

private:
    bool HasWork() const override { return m_pwm != nullptr; }
    void Work() override;

    PwmChannel* m_pwm = nullptr;
};
