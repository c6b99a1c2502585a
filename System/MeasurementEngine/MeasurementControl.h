// Carries out one measurement cycle at a time, on a thread that is made for the cycle. The object serves all cycles of
// the process and keeps from one to the next: the settings as first read, the step table, the index and the LED's duty.
// The measurement engine's thread starts, aborts and primes; the thread that kills the engine aborts too.
#pragma once

#include <atomic>

#include "Frameworks/Threading/Mutex.h"
#include "Frameworks/Threading/ThreadBase.h"
#include "System/MeasurementEngine/MeasurementSettings.h"
#include "System/MeasurementEngine/MeasurementStepController.h"
#include "System/MeasurementEngine/StepDefinition.h"

class MeasurementControl final : public ThreadBase {
public:
    MeasurementControl();
    ~MeasurementControl() override;

    // False while a cycle runs, or if no thread could be created.
    bool StartMeasurement();
    // Returns when the step in progress, and with it the cycle, has ended. False, and nothing happens, without a cycle.
    bool AbortMeasurement();
    // Turns reagent and sample through the lines and homes the pump, on the caller's thread. False while a cycle runs,
    // or if any part fails. The count of revolutions is taken only if no cycle has read the settings before: prime
    // before the first cycle, since priming after it fails.
    bool PrimeSystem();

    std::int32_t Run() override;
    void Kill() override { m_abort = true; }  // the cycle ends after the step in progress
    bool Init() override ACQUIRE(m_runMutex);
    std::int32_t Exit() override RELEASE(m_runMutex);

private:
    bool ReadConfiguration();
    void ApplyConfiguration();
    bool PerformMeasurement();
    bool RunMeasurementCycle();
    bool ExecuteSteps();
    bool SendResults();
    void JoinThread() REQUIRES(m_threadMutex);

    MeasurementStepController m_stepController;
    Mutex m_runMutex;                         // held by a cycle's thread from Init to Exit
    std::uint32_t m_measurementIndex = 0;     // results since start
    std::atomic<bool> m_abort{false};         // set by Kill, cleared by StartMeasurement
    std::atomic<bool> m_cycleRunning{false};  // from StartMeasurement to the end of the cycle
    bool m_configurationLoaded = false;
    MeasurementSettings m_settings;
    StepDefinition m_steps;

    Mutex m_threadMutex;  // making and joining the cycle's thread
    bool m_threadMade GUARDED_BY(m_threadMutex) = false;
};
