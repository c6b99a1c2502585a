// The hardware of a cycle and its workers.
#include "Drivers/Board.h"
#include "Drivers/PwmChannel.h"
#include "Drivers/SpiDevice.h"
#include "Drivers/StepperDriverMotor.h"
#include "Drivers/ValvePWM.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/MeasurementEngine/DetectorProcessing.h"
#include "System/MeasurementEngine/EmitterProcessing.h"
#include "System/MeasurementEngine/MeasurementStepController.h"
#include "System/MeasurementEngine/ReAgentDeliveryProcessing.h"
#include "System/MeasurementEngine/SampleDeliveryProcessing.h"
#include "System/MeasurementEngine/StirBarProcessing.h"

namespace {

std::unique_ptr<StepperDriverMotor> MakePumpMotor() {
    auto motor = TryMake<StepperDriverMotor>(OnBoard::PumpPwm);
    if (motor != nullptr) {
        motor->SetUpPins(OnBoard::PumpEnable, OnBoard::PumpDirection);
        motor->SetUpCurrentLimit(OnBoard::PumpCurrentLimit, OnBoard::PumpInitialLimit);
    }
    return motor;
}

struct SystemTexts {
    const char* noDevice;
    const char* noWorker;
};

// The device first: it gives its lines back while the worker still exists.
template <typename Device, typename Worker>
void Release(std::unique_ptr<Device>& device, std::unique_ptr<Worker>& worker) {
    device.reset();
    if (worker != nullptr) {
        worker->ReleaseThread();
        worker.reset();
    }
}

// Keeps the device, makes its worker and gives it the device. A null device or no memory for the worker fails.
template <typename Device, typename Worker>
bool MakeSystem(std::unique_ptr<Device> made, std::unique_ptr<Device>& device, std::unique_ptr<Worker>& worker,
                void (Worker::*setDevice)(Device*), const SystemTexts& texts) {
    device = std::move(made);
    if (device == nullptr) {
        return ReportError(texts.noDevice, MEASUREMENT_ENGINE);
    }
    worker = TryMake<Worker>();
    if (worker == nullptr) {
        Release(device, worker);
        return ReportError(texts.noWorker, MEASUREMENT_ENGINE);
    }
    (worker.get()->*setDevice)(device.get());
    return true;
}

}  // namespace

bool MeasurementStepController::InitializeSystems() {
    return InitializeDetectorSystem() && InitializeEmitterSystem() && InitializeReAgentDeliverySystem() &&
           InitializeSampleDeliverySystem() && InitializeStirBarSystem();
}

void MeasurementStepController::ReleaseSystems() {
    ReleaseDetectorSystem();
    ReleaseEmitterSystem();
    ReleaseReAgentDeliverySystem();
    ReleaseSampleDeliverySystem();
    ReleaseStirBarSystem();
}

void MeasurementStepController::ReleaseDetectorSystem() { Release(m_spiDevice, m_detector); }
void MeasurementStepController::ReleaseEmitterSystem() { Release(m_ledPwm, m_emitter); }
void MeasurementStepController::ReleaseReAgentDeliverySystem() { Release(m_pumpMotor, m_reagent); }
void MeasurementStepController::ReleaseSampleDeliverySystem() { Release(m_valve, m_sample); }
void MeasurementStepController::ReleaseStirBarSystem() { Release(m_stirMotor, m_stir); }

bool MeasurementStepController::InitializeDetectorSystem() {
    ReleaseDetectorSystem();
    return MakeSystem(
        TryMake<SpiDevice>(), m_spiDevice, m_detector, &DetectorProcessing::SetSpiDevice,
        {"MeasurementStepController::InitializeDetectorSystem  Unable to create detector System",
         "MeasurementStepController::InitializeDetectorSystem  Unable to create detector Threading System"});
}

bool MeasurementStepController::InitializeEmitterSystem() {
    ReleaseEmitterSystem();
    const auto channel = static_cast<std::int32_t>(m_settings.emitterChannel);
    const double frequency = m_settings.emitterDefaultFrequency;
    const double dutyCycle = m_settings.emitterDefaultDutyCycle;
    if (channel < 0 || dutyCycle < 0.0 || frequency < 0.0) {
        return ReportError("MeasurementStepController::InitializeEmitterSystem  initial values not set",
                           MEASUREMENT_ENGINE);
    }
    // A channel above 255 becomes 255, which the PWM refuses.
    return MakeSystem(
        TryMake<PwmChannel>(TruncateTo<std::uint8_t>(channel), static_cast<float>(frequency),
                            static_cast<float>(dutyCycle)),
        m_ledPwm, m_emitter, &EmitterProcessing::SetPwm,
        {"MeasurementStepController::InitializeEmitterSystem  Unable to create LED emitter System",
         "MeasurementStepController::InitializeEmitterSystem  Unable to create LED emitter Threading System"});
}

bool MeasurementStepController::InitializeReAgentDeliverySystem() {
    ReleaseReAgentDeliverySystem();
    return MakeSystem(
        MakePumpMotor(), m_pumpMotor, m_reagent, &ReAgentDeliveryProcessing::SetMotor,
        {"MeasurementStepController::InitializeReAgentDeliverySystem  Unable to create fluid delivery motor",
         "MeasurementStepController::InitializeReAgentDeliverySystem  Unable to create fluid delivery "
         "Threading System"});
}

bool MeasurementStepController::InitializeSampleDeliverySystem() {
    ReleaseSampleDeliverySystem();
    auto valve = TryMake<ValvePWM>(OnBoard::ValvePwm, OnBoard::ValveFrequency);
    if (valve != nullptr) {
        if (!valve->Initialize()) {
            return ReportError(
                "MeasurementStepController::InitializeSampleDeliverySystem  Unable to initialize sample delivery "
                "motor",
                MEASUREMENT_ENGINE);
        }
        // The valve takes the same word as a signed one: -1 in the settings is a negative delay, which means no wait.
        valve->SetSwitchValues(static_cast<std::int32_t>(m_settings.sampleSwitchDelay),
                               static_cast<float>(m_settings.sampleSwitchDutyCycle));
    }
    return MakeSystem(
        std::move(valve), m_valve, m_sample, &SampleDeliveryProcessing::SetValve,
        {"MeasurementStepController::InitializeSampleDeliverySystem  Unable to create sample delivery motor",
         "MeasurementStepController::InitializeSampleDeliverySystem  Unable to create sample delivery "
         "Threading System"});
}

bool MeasurementStepController::InitializeStirBarSystem() {
    ReleaseStirBarSystem();
    auto motor = TryMake<StepperDriverBase>(OnBoard::StirPwm);
    if (motor != nullptr) {
        motor->SetUpEnablePin(OnBoard::StirEnable);
    }
    return MakeSystem(
        std::move(motor), m_stirMotor, m_stir, &StirBarProcessing::SetMotor,
        {"MeasurementStepController::InitializeStirBarSystem  Unable to create stirbar motor",
         "MeasurementStepController::InitializeStirBarSystem  Unable to create stirbar Threading System"});
}

bool MeasurementStepController::FindReAgentHome() {
    const bool temporary = m_pumpMotor == nullptr;
    if (temporary) {
        m_pumpMotor = MakePumpMotor();
        m_reagent = TryMake<ReAgentDeliveryProcessing>();
    }
    bool found = false;
    if (m_pumpMotor != nullptr && m_reagent != nullptr) {
        m_reagent->SetMotor(m_pumpMotor.get());
        found = m_reagent->FindHomePosition(m_settings.findHomeSpeed);
    }
    if (temporary) {
        ReleaseReAgentDeliverySystem();
    }
    return found;
}
