#include "System/MeasurementEngine/MeasurementControl.h"

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/MeasurementMessage.h"

MeasurementControl::MeasurementControl() {
    if (!m_runMutex.Initialize()) {
        ReportError("MeasurementControl::MeasurementControl  Unable to create mutex", MEASUREMENT_ENGINE);
    }
}

MeasurementControl::~MeasurementControl() {
    m_abort = true;
    const MutexLock lock(m_threadMutex);
    JoinThread();
}

bool MeasurementControl::StartMeasurement() {
    const MutexLock lock(m_threadMutex);
    m_abort = false;
    if (m_cycleRunning) {
        return false;
    }
    JoinThread();
    // Set here and not by the new thread: an abort or a second start that comes at once has to find it.
    m_cycleRunning = true;
    m_threadMade = CreateThread();
    if (!m_threadMade) {
        m_cycleRunning = false;
        ReleaseThread();
    }
    return m_threadMade;
}

bool MeasurementControl::AbortMeasurement() {
    const MutexLock lock(m_threadMutex);
    if (!m_cycleRunning) {
        return false;
    }
    Kill();
    JoinThread();
    return true;
}

// A cycle that ended by itself leaves its thread to be joined by the next start.
void MeasurementControl::JoinThread() {
    if (m_threadMade) {
        pthread_join(GetThreadId(), nullptr);
        ClearThreadId();
        m_threadMade = false;
    }
}

bool MeasurementControl::PrimeSystem() {
    if (m_cycleRunning) {
        return ReportError(
            "MeasurementControl::PrimeSystem  Unable to execute priming due to measurement already running",
            MEASUREMENT_ENGINE);
    }
    if (!m_configurationLoaded) {
        if (!ReadConfiguration()) {
            return false;
        }
        ApplyConfiguration();
        m_stepController.SetPrimeCount(m_settings.primeCycleCount);
    }
    if (!m_stepController.PrimeFluidics() || !m_stepController.FindReAgentHome()) {
        return false;
    }
    m_configurationLoaded = true;
    return true;
}

std::int32_t MeasurementControl::Run() {
    SetPriority(-1);
    if (!Init()) {
        ReportError("MeasurementControl::Run  Unable to initialize thread", MEASUREMENT_ENGINE);
    } else if (!PerformMeasurement()) {
        ReportError("MeasurementControl::Run  Unable to create and send the measurement request", MEASUREMENT_ENGINE);
    }
    m_cycleRunning = false;
    return Exit();
}

bool MeasurementControl::Init() {
    m_runMutex.Lock();
    ThreadBase::Init();
    if (!m_configurationLoaded) {
        m_configurationLoaded = ReadConfiguration();
    }
    if (m_configurationLoaded) {
        ApplyConfiguration();
    }
    return m_configurationLoaded;
}

std::int32_t MeasurementControl::Exit() {
    m_runMutex.Unlock();
    pthread_exit(nullptr);
}

bool MeasurementControl::ReadConfiguration() {
    const SystemConfigurationFile* file = SingletonBase::GetSystemConfiguration();
    const MeasurementEngineConfigInfo* section = file == nullptr ? nullptr : file->GetMeasurementEngineConfigInfo();
    if (section == nullptr) {
        return false;
    }
    m_settings.Read(*section);
    const InfoContainer* steps = section->GetMeasurementSteps();
    return steps != nullptr && m_steps.Load(*steps);
}

// The count of priming revolutions is not among them: only priming hands it over. The LED runs at whole hertz.
void MeasurementControl::ApplyConfiguration() {
    m_stepController.SetSettings(m_settings);
    m_stepController.SetEmitterFrequency(TruncateTo<std::int32_t>(m_settings.emitterDefaultFrequency));
}

bool MeasurementControl::PerformMeasurement() { return RunMeasurementCycle() && SendResults(); }

bool MeasurementControl::RunMeasurementCycle() {
    m_stepController.InitializeSystems();  // a step without its workers passes
    const bool done = ExecuteSteps();
    m_stepController.ReleaseSystems();
    MessageController::SendStatusMessage(m_abort ? "Aborted Measurement Cycle"
                                                 : "Waiting for Next Measurement Initiation");
    return done;
}

// By step number, whatever the order in the settings. A step that is not configured ends the cycle.
bool MeasurementControl::ExecuteSteps() {
    for (std::int32_t step = 0; step < StepCount; ++step) {
        if (!m_stepController.ExecuteStep(m_steps[static_cast<StepType>(step)]) || m_abort) {
            return false;
        }
    }
    return true;
}

bool MeasurementControl::SendResults() {
    // The next cycle starts with this duty.
    m_settings.emitterDefaultDutyCycle = m_stepController.GetLEDDutyCycle();
    MessageController::SendStatusMessage(
        "End of Measurement Cycle: " +
        LEDResultText(m_settings.emitterDefaultDutyCycle, m_stepController.GetLEDAdjustTime()));

    auto message = TryMake<MeasurementMessage>();
    if (message == nullptr) {
        return false;
    }
    MeasurementResults results;
    results.SetChlorine(m_stepController.GetChlorine());
    results.SetAbsorbance(m_stepController.GetAbsorbance());
    results.SetTransmittance(m_stepController.GetTransmittance());
    results.SetDarkCount(m_stepController.GetDarkCount());
    results.SetSampleCount(m_stepController.GetSampleCount());
    results.SetReferenceCount(m_stepController.GetReferenceCount());
    results.SetMeasurementIndex(++m_measurementIndex);
    message->SetMeasurementResults(results);
    return MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE);
}
