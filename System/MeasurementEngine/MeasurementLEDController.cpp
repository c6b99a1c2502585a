#include "System/MeasurementEngine/MeasurementLEDController.h"

#include <unistd.h>

#include "Frameworks/Utilities/Report.h"
#include "System/MeasurementEngine/DetectorProcessing.h"
#include "System/MeasurementEngine/EmitterProcessing.h"

namespace {

constexpr double MinDutyCycle = 0.0;
constexpr double MaxDutyCycle = 100.0;

// Whole seconds from one second up: 1999 ms wait one second.
void Settle(std::uint32_t milliSeconds) {
    const std::uint64_t microSeconds = std::uint64_t{milliSeconds} * 1000;
    if (microSeconds <= 999999) {
        usleep(static_cast<useconds_t>(microSeconds));
    } else {
        sleep(static_cast<unsigned>(microSeconds / 1000000));
    }
}

// A step that leaves the duty unchanged, or moves it the wrong way, would never end.
bool MayWalk(bool nearer) {
    return nearer ||
           ReportError(
               "MeasurementLEDController::AdjustLEDDutyCycle  LEDDutycycleAdjustStep does not move the duty cycle",
               MEASUREMENT_ENGINE);
}

}  // namespace

double MeasurementLEDController::EstimateDutyCycle(double reference, double dutyCycle, double dark, double target) {
    const double estimate = reference > dark ? (target - dark) * dutyCycle / (reference - dark) : MaxDutyCycle;
    if (estimate < MinDutyCycle) {
        return MinDutyCycle;
    }
    return estimate > MaxDutyCycle ? MaxDutyCycle : estimate;
}

bool MeasurementLEDController::Init() {
    m_adjustTime = 0;
    m_measuredLevel = 0.0;
    return StepWorker::Init();
}

bool MeasurementLEDController::HasWork() const {
    return m_detector != nullptr && m_emitter != nullptr && GetStep()->adcMonitorOn;
}

void MeasurementLEDController::Refuse() {
    StepWorker::Refuse();
    m_detector = nullptr;
    m_emitter = nullptr;
}

// Down first and to its end, then up. The upper edge is not checked again: a large step can end above the band.
void MeasurementLEDController::AdjustLEDDutyCycle() {
    const double tolerance = m_targetLevel * m_deviation / 100.0;
    m_measuredLevel = MeasureAtDutyCycle(m_dutyCycle);
    m_dutyCycle = WalkDown(m_dutyCycle, m_targetLevel + tolerance);
    m_dutyCycle = WalkUp(m_dutyCycle, m_targetLevel - tolerance);
}

// The duty is not held to its bounds before a trial, so the last trial may ask for less than 0.
double MeasurementLEDController::WalkDown(double dutyCycle, double highest) {
    while (m_measuredLevel > highest) {
        if (dutyCycle <= MinDutyCycle) {
            return MinDutyCycle;
        }
        const double next = dutyCycle - m_adjustStep;
        if (!MayWalk(next < dutyCycle)) {
            return dutyCycle;
        }
        dutyCycle = next;
        m_measuredLevel = MeasureAtDutyCycle(dutyCycle);
    }
    return dutyCycle;
}

double MeasurementLEDController::WalkUp(double dutyCycle, double lowest) {
    while (m_measuredLevel < lowest) {
        if (dutyCycle >= MaxDutyCycle) {
            return MaxDutyCycle;
        }
        const double next = dutyCycle + m_adjustStep;
        if (!MayWalk(next > dutyCycle)) {
            return dutyCycle;
        }
        dutyCycle = next;
        m_measuredLevel = MeasureAtDutyCycle(dutyCycle);
    }
    return dutyCycle;
}

double MeasurementLEDController::MeasureAtDutyCycle(double dutyCycle) {
    m_emitter->SetDutyCycle(static_cast<float>(dutyCycle));
    m_emitter->SetStep(GetStep());
    m_emitter->Start();
    m_emitter->Join();
    Settle(m_settleTime);
    m_detector->SetStep(GetStep());
    m_detector->Start();
    m_detector->Join();
    m_adjustTime += GetStep()->duration + m_settleTime;  // what is asked for, not what it took
    return m_detector->GetRawMean();
}
