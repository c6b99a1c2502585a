#include "System/MeasurementEngine/MeasurementStepController.h"

#include "Drivers/PwmChannel.h"
#include "Drivers/SpiDevice.h"
#include "Drivers/StepperDriverMotor.h"
#include "Drivers/ValvePWM.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/MeasurementEngine/DetectorProcessing.h"
#include "System/MeasurementEngine/EmitterProcessing.h"
#include "System/MeasurementEngine/MeasurementLEDController.h"
#include "System/MeasurementEngine/ReAgentDeliveryProcessing.h"
#include "System/MeasurementEngine/SampleDeliveryProcessing.h"
#include "System/MeasurementEngine/StirBarProcessing.h"
#include "System/Messages/MeasurementResults.h"
#include "System/Messages/MeasurementStepDataMessage.h"

// Executing steps and priming; the hardware is made and released in MeasurementStepSystems.cpp.

namespace {

constexpr float PrimeDutyCycle = 50.0F;

}  // namespace

// Refuses to make the emitter until it is given the settings.
MeasurementStepController::MeasurementStepController() {
    SetEmitterChannel(-1);
    SetEmitterFrequency(-1.0);
    SetEmitterDutyCycle(-1.0);
}

MeasurementStepController::~MeasurementStepController() { ReleaseSystems(); }

StdString LEDResultText(double dutyCycle, std::uint32_t adjustTime) {
    StdString duty;
    duty.FromDouble(dutyCycle);
    // The readers of the status texts know it with both percent signs.
    return "LED DutyCycle = " + duty + "%% and LED Adjust Time = " + StdString(std::to_string(adjustTime)) + "ms";
}

bool MeasurementStepController::ExecuteStep(const StepParameters* step) {
    if (step == nullptr) {
        return false;
    }
    MessageController::SendStatusMessage("Executing " + GetStepDisplayName(step->stepType) + " Step");
    if (step->stepType == LED_ADJUSTMENT_STEP) {
        ExecuteLEDAdjustment(*step);
    } else {
        ExecuteWorkers(*step);
    }
    if (step->adcMonitorOn) {
        TakeCounts(step->stepType);
        SendStepData(*step);
    }
    return true;
}

void MeasurementStepController::ExecuteLEDAdjustment(const StepParameters& step) {
    const auto controller = TryMake<MeasurementLEDController>();
    if (controller == nullptr) {
        return;
    }
    SetUpLEDController(*controller, step);
    controller->Start();
    controller->Join();
    m_settings.emitterDefaultDutyCycle = controller->GetDutyCycle();
    m_ledAdjustTime = controller->GetAdjustTime();
    MessageController::SendStatusMessage("LED Adjustment Results: " +
                                         LEDResultText(m_settings.emitterDefaultDutyCycle, m_ledAdjustTime));
}

// Without one of its two workers the controller refuses to start.
void MeasurementStepController::SetUpLEDController(MeasurementLEDController& controller, const StepParameters& step) {
    if (m_detector != nullptr) {
        m_detector->SetStep(&step);
    }
    if (m_emitter != nullptr) {
        m_emitter->SetStep(&step);
    }
    controller.SetDetector(m_detector.get());
    controller.SetEmitter(m_emitter.get());
    controller.SetDarkCount(m_darkCount);
    controller.SetDutyCycle(m_settings.emitterDefaultDutyCycle);
    controller.SetTargetLevel(m_settings.detectorOutputLevel);
    controller.SetDeviation(m_settings.detectorOutputLevelDev);
    controller.SetAdjustStep(m_settings.ledDutycycleAdjustStep);
    controller.SetSettleTime(m_settings.ledSettleTime);
    controller.SetStep(&step);
}

void MeasurementStepController::ExecuteWorkers(const StepParameters& step) {
    StepWorker* const workers[] = {m_detector.get(), m_emitter.get(), m_sample.get(), m_reagent.get(), m_stir.get()};
    for (const StepWorker* worker : workers) {
        if (worker == nullptr) {
            return;
        }
    }
    for (StepWorker* worker : workers) {
        worker->SetStep(&step);
    }
    for (StepWorker* worker : workers) {
        worker->Start();
    }
    for (StepWorker* worker : workers) {
        worker->Join();
    }
}

// Without a detector, as without a sample, a count is 0.0.
void MeasurementStepController::TakeCounts(StepType stepType) {
    DetectorProcessing none;
    DetectorProcessing& detector = m_detector != nullptr ? *m_detector : none;
    switch (stepType) {
        case DARK_COUNT_MEASUREMENT_STEP:
            m_darkCount = detector.GetTrimmedMean(m_settings.darkHighRejectNum, m_settings.darkLowRejectNum);
            m_darkDeviation = detector.GetTrimmedDeviation(m_settings.darkHighRejectNum, m_settings.darkLowRejectNum);
            break;
        case REFERENCE_OPTICAL_MEASUREMENT_STEP:
            m_referenceCount = detector.GetTrimmedMean(m_settings.refHighRejectNum, m_settings.refLowRejectNum);
            // Over all samples, unlike the other two: the reference light is judged with its outliers.
            m_referenceDeviation = detector.GetRawDeviation();
            m_settings.emitterDefaultDutyCycle = MeasurementLEDController::EstimateDutyCycle(
                m_referenceCount, m_settings.emitterDefaultDutyCycle, m_darkCount, m_settings.detectorOutputLevel);
            break;
        case SAMPLE_OPTICAL_MEASUREMENT_STEP:
            m_sampleCount = detector.GetTrimmedMean(m_settings.sampleHighRejectNum, m_settings.sampleLowRejectNum);
            m_sampleDeviation =
                detector.GetTrimmedDeviation(m_settings.sampleHighRejectNum, m_settings.sampleLowRejectNum);
            break;
        default:
            break;
    }
}

void MeasurementStepController::SendStepData(const StepParameters& step) const {
    auto message = TryMake<MeasurementStepDataMessage>();
    if (message != nullptr) {
        const StepResults results(m_detector != nullptr ? m_detector->GetSamples() : DetectorSamples(), step);
        message->SetStepResults(&results);
    }
    MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE);
}

double MeasurementStepController::GetTransmittance() const {
    return Transmittance(m_darkCount, m_referenceCount, m_sampleCount);
}

double MeasurementStepController::GetAbsorbance() const { return Absorbance(GetTransmittance()); }

double MeasurementStepController::GetChlorine() const {
    return Chlorine(m_settings.colorimeterCellConstant, GetAbsorbance());
}

bool MeasurementStepController::PrimeFluidics() {
    const bool primed = InitializeReAgentDeliverySystem() && InitializeSampleDeliverySystem() && TurnPrimed();
    ReleaseReAgentDeliverySystem();
    ReleaseSampleDeliverySystem();
    return primed;
}

bool MeasurementStepController::TurnPrimed() {
    const float angle = static_cast<float>(m_primeCount) * 360.0F;
    const auto time = TruncateTo<std::uint32_t>(angle / 360.0F * 1000.0F);
    m_valve->ValveOn(ValvePWM::OpeningDutyCycle);
    const bool turned = m_pumpMotor->MoveAngle(angle, PrimeDutyCycle, time, false);
    m_valve->ValveOff();
    return turned;
}
