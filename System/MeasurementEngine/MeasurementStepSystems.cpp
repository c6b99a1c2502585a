// The hardware of a cycle and its workers: what stands on which line of the board.
#include "Drivers/PwmChannel.h"
#include "Drivers/SpiDevice.h"
#include "Drivers/StepperDriverMotor.h"
#include "Drivers/ValvePWM.h"
#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/MeasurementEngine/DetectorProcessing.h"
#include "System/MeasurementEngine/EmitterProcessing.h"
#include "System/MeasurementEngine/EngineLog.h"
#include "System/MeasurementEngine/MeasurementStepController.h"
#include "System/MeasurementEngine/ReAgentDeliveryProcessing.h"
#include "System/MeasurementEngine/SampleDeliveryProcessing.h"
#include "System/MeasurementEngine/StirBarProcessing.h"

namespace {

constexpr std::uint8_t PumpChannel = 1;
constexpr PinAddress PumpEnable{0, 2};
constexpr PinAddress PumpDirection{0, 3};
constexpr PinAddress PumpLimitBit0{0, 4};
constexpr PinAddress PumpLimitBit1{0, 5};
constexpr PinAddress PumpLimitBit2{0, 6};
constexpr std::uint32_t PumpInitialLimit = 7;

constexpr std::uint8_t StirChannel = 2;
constexpr PinAddress StirEnable{1, 15};

constexpr std::uint8_t ValveChannel = 3;
constexpr std::uint16_t ValveFrequency = 1000;  // hertz

std::unique_ptr<StepperDriverMotor> MakePumpMotor() {
    auto motor = TryMake<StepperDriverMotor>(PumpChannel);
    if (motor != nullptr) {
        motor->SetUpPins(PumpEnable, PumpDirection);
        motor->SetUpCurrentLimit(PumpLimitBit0, PumpLimitBit1, PumpLimitBit2, PumpInitialLimit);
    }
    return motor;
}

// The device first: it closes and gives its lines back while the worker still stands.
template <typename Device, typename Worker>
void Release(std::unique_ptr<Device>& device, std::unique_ptr<Worker>& worker) {
    device.reset();
    if (worker != nullptr) {
        worker->ReleaseThread();
        worker.reset();
    }
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
    m_spiDevice = TryMake<SpiDevice>();
    if (m_spiDevice == nullptr) {
        LogError("MeasurementStepController::InitializeDetectorSystem  Unable to create detector System");
        return false;
    }
    m_detector = TryMake<DetectorProcessing>();
    if (m_detector == nullptr) {
        LogError("MeasurementStepController::InitializeDetectorSystem  Unable to create detector Threading System");
        ReleaseDetectorSystem();
        return false;
    }
    m_detector->SetSpiDevice(m_spiDevice.get());
    return true;
}

bool MeasurementStepController::InitializeEmitterSystem() {
    ReleaseEmitterSystem();
    if (m_emitterChannel < 0 || m_emitterDutyCycle < 0.0 || m_emitterFrequency < 0.0) {
        LogError("MeasurementStepController::InitializeEmitterSystem  initial values not set");
        return false;
    }
    // A channel that the digit of its name can't hold is refused by the channel itself.
    m_ledPwm = TryMake<PwmChannel>(TruncateTo<std::uint8_t>(m_emitterChannel), static_cast<float>(m_emitterFrequency),
                                   static_cast<float>(m_emitterDutyCycle));
    if (m_ledPwm == nullptr) {
        LogError("MeasurementStepController::InitializeEmitterSystem  Unable to create LED emitter System");
        return false;
    }
    m_emitter = TryMake<EmitterProcessing>();
    if (m_emitter == nullptr) {
        LogError("MeasurementStepController::InitializeEmitterSystem  Unable to create LED emitter Threading System");
        ReleaseEmitterSystem();
        return false;
    }
    m_emitter->SetPwm(m_ledPwm.get());
    return true;
}

bool MeasurementStepController::InitializeReAgentDeliverySystem() {
    ReleaseReAgentDeliverySystem();
    m_pumpMotor = MakePumpMotor();
    if (m_pumpMotor == nullptr) {
        LogError("MeasurementStepController::InitializeReAgentDeliverySystem  Unable to create fluid delivery motor");
        return false;
    }
    m_reagent = TryMake<ReAgentDeliveryProcessing>();
    if (m_reagent == nullptr) {
        LogError(
            "MeasurementStepController::InitializeReAgentDeliverySystem  Unable to create fluid delivery Threading "
            "System");
        ReleaseReAgentDeliverySystem();
        return false;
    }
    m_reagent->SetMotor(m_pumpMotor.get());
    return true;
}

bool MeasurementStepController::InitializeSampleDeliverySystem() {
    ReleaseSampleDeliverySystem();
    m_valve = TryMake<ValvePWM>(ValveChannel, ValveFrequency);
    if (m_valve == nullptr) {
        LogError("MeasurementStepController::InitializeSampleDeliverySystem  Unable to create sample delivery motor");
        return false;
    }
    if (!m_valve->Initialize()) {
        LogError(
            "MeasurementStepController::InitializeSampleDeliverySystem  Unable to initialize sample delivery motor");
        ReleaseSampleDeliverySystem();
        return false;
    }
    // The valve reads the word as signed: -1 in the settings is a negative delay, which means no wait.
    m_valve->SetSwitchValues(static_cast<std::int32_t>(m_sampleSwitchDelay),
                             static_cast<float>(m_sampleSwitchDutyCycle));
    m_sample = TryMake<SampleDeliveryProcessing>();
    if (m_sample == nullptr) {
        LogError(
            "MeasurementStepController::InitializeSampleDeliverySystem  Unable to create sample delivery Threading "
            "System");
        ReleaseSampleDeliverySystem();
        return false;
    }
    m_sample->SetValve(m_valve.get());
    return true;
}

bool MeasurementStepController::InitializeStirBarSystem() {
    ReleaseStirBarSystem();
    m_stirMotor = TryMake<StepperDriverBase>(StirChannel);
    if (m_stirMotor == nullptr) {
        LogError("MeasurementStepController::InitializeStirBarSystem  Unable to create stirbar motor");
        return false;
    }
    m_stirMotor->SetUpEnablePin(StirEnable);
    m_stir = TryMake<StirBarProcessing>();
    if (m_stir == nullptr) {
        LogError("MeasurementStepController::InitializeStirBarSystem  Unable to create stirbar Threading System");
        ReleaseStirBarSystem();
        return false;
    }
    m_stir->SetMotor(m_stirMotor.get());
    return true;
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
        found = m_reagent->FindHomePosition(m_findHomeSpeed);
    }
    if (temporary) {
        ReleaseReAgentDeliverySystem();
    }
    return found;
}
