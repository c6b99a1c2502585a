// Walks the LED's duty cycle until the detector reads near the target level, on its own thread, which starts and
// joins the detector and the emitter for each trial. Set all of it before Start; read the results after Join.
#pragma once

#include "System/MeasurementEngine/StepWorker.h"

class DetectorProcessing;
class EmitterProcessing;

class MeasurementLEDController final : public StepWorker {
public:
    MeasurementLEDController() : StepWorker("MeasurementLEDController") {}

    bool Init() override;

    // Not owned. Forgotten, as the step is, by a Start that is refused.
    void SetDetector(DetectorProcessing* detector) { m_detector = detector; }
    void SetEmitter(EmitterProcessing* emitter) { m_emitter = emitter; }

    void SetDarkCount(double darkCount) { m_darkCount = darkCount; }             // kept; the comparison is without it
    void SetDutyCycle(double dutyCycle) { m_dutyCycle = dutyCycle; }             // percent, where the walk starts
    void SetTargetLevel(double targetLevel) { m_targetLevel = targetLevel; }     // counts
    void SetDeviation(double deviation) { m_deviation = deviation; }             // percent of the target
    void SetAdjustStep(double adjustStep) { m_adjustStep = adjustStep; }         // percent of duty a trial
    void SetSettleTime(std::uint32_t settleTime) { m_settleTime = settleTime; }  // milliseconds

    double GetDutyCycle() const { return m_dutyCycle; }           // the start value if it did not run
    std::uint32_t GetAdjustTime() const { return m_adjustTime; }  // milliseconds; 0 if it did not run

    // The duty that would bring the reference reading to the target, 0.0 to 100.0, taking the light as proportional to
    // it. 100.0 if the reference is not above the dark count.
    static double EstimateDutyCycle(double reference, double dutyCycle, double dark, double target);

private:
    bool HasWork() const override;
    void Work() override { AdjustLEDDutyCycle(); }
    void Refuse() override;

    void AdjustLEDDutyCycle();
    double WalkDown(double dutyCycle, double highest);
    double WalkUp(double dutyCycle, double lowest);
    double MeasureAtDutyCycle(double dutyCycle);

    DetectorProcessing* m_detector = nullptr;
    EmitterProcessing* m_emitter = nullptr;
    double m_measuredLevel = 0.0;
    double m_darkCount = 0.0;
    double m_targetLevel = 2000000.0;
    double m_deviation = 25.0;
    double m_adjustStep = 2.0;
    double m_dutyCycle = 50.0;
    std::uint32_t m_adjustTime = 0;
    std::uint32_t m_settleTime = 500;
};
