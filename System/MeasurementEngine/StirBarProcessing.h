// Runs the stir bar of the cell for the length of a step.
#pragma once

#include "System/MeasurementEngine/StepWorker.h"

class StepperDriverBase;

class StirBarProcessing final : public StepWorker {
public:
    StirBarProcessing() : StepWorker("StirBarProcessing") {}

    void SetMotor(StepperDriverBase* motor) { m_motor = motor; }  // not owned

private:
    bool HasWork() const override { return m_motor != nullptr && GetStep()->stirringOn; }
    void Work() override;

    StepperDriverBase* m_motor = nullptr;
};
