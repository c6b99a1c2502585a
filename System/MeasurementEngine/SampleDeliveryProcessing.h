// Opens or closes the sample valve for a step; it stays so afterwards.
#pragma once

#include "System/MeasurementEngine/StepWorker.h"

class ValvePWM;

class SampleDeliveryProcessing final : public StepWorker {
public:
    SampleDeliveryProcessing() : StepWorker("SampleDeliveryProcessing") {}

    std::int32_t Exit() override;

    void SetValve(ValvePWM* valve) { m_valve = valve; }  // not owned

private:
    bool HasWork() const override { return m_valve != nullptr; }
    void Work() override;

    ValvePWM* m_valve = nullptr;
};
