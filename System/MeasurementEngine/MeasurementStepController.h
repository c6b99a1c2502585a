// Executes one step at a time: it makes the hardware and the workers of a cycle, starts all workers of a step together
// and joins them, keeps the counts and turns them into the result. The cycle's thread calls everything, and the
// measurement engine's thread PrimeFluidics and FindReAgentHome while no cycle runs.
#pragma once

#include <memory>

#include "System/MeasurementEngine/MeasurementSettings.h"
#include "System/Messages/DetectorInformation.h"
#include "System/Messages/StepParameters.h"

class DetectorProcessing;
class EmitterProcessing;
class MeasurementLEDController;
class PwmChannel;
class ReAgentDeliveryProcessing;
class SampleDeliveryProcessing;
class SpiDevice;
class StepperDriverBase;
class StepperDriverMotor;
class StirBarProcessing;
class ValvePWM;

class MeasurementStepController {
public:
    MeasurementStepController();
    MeasurementStepController(const MeasurementStepController&) = delete;
    MeasurementStepController& operator=(const MeasurementStepController&) = delete;
    virtual ~MeasurementStepController();

    // Makes the hardware and the workers of a cycle, and stops at the first that fails, with a line in the log.
    bool InitializeSystems();
    void ReleaseSystems();

    // Returns when the step has ended. False only for a null step: no measured value and no device fails a step.
    bool ExecuteStep(const StepParameters* step);

    // Turns the pump by the prime count with the valve open, at one revolution a second; false too if that count is 0.
    bool PrimeFluidics();
    bool FindReAgentHome();

    // From the present counts; the chlorine in the unit of the cell constant.
    double GetChlorine() const;
    double GetAbsorbance() const;
    double GetTransmittance() const;
    double GetDarkCount() const { return m_darkCount; }
    double GetReferenceCount() const { return m_referenceCount; }
    double GetSampleCount() const { return m_sampleCount; }
    double GetDarkDeviation() const { return m_darkDeviation; }
    double GetReferenceDeviation() const { return m_referenceDeviation; }
    double GetSampleDeviation() const { return m_sampleDeviation; }
    double GetLEDDutyCycle() const { return m_settings.emitterDefaultDutyCycle; }  // percent
    std::uint32_t GetLEDAdjustTime() const { return m_ledAdjustTime; }             // milliseconds

    // Before InitializeSystems. All settings but the count of priming revolutions, which only SetPrimeCount gives.
    void SetSettings(const MeasurementSettings& settings) { m_settings = settings; }
    void SetPrimeCount(std::uint32_t revolutions) { m_primeCount = revolutions; }

    // One setting each: percent, hertz, milliseconds, degrees a second.
    void SetEmitterChannel(std::int32_t channel) { m_settings.emitterChannel = static_cast<std::uint32_t>(channel); }
    void SetEmitterFrequency(double frequency) { m_settings.emitterDefaultFrequency = frequency; }
    void SetEmitterDutyCycle(double dutyCycle) { m_settings.emitterDefaultDutyCycle = dutyCycle; }
    void SetCellConstant(double cellConstant) { m_settings.colorimeterCellConstant = cellConstant; }
    void SetSampleSwitchDelay(std::uint32_t delay) { m_settings.sampleSwitchDelay = delay; }
    void SetSampleSwitchDutyCycle(double dutyCycle) { m_settings.sampleSwitchDutyCycle = dutyCycle; }
    void SetFindHomeSpeed(double speed) { m_settings.findHomeSpeed = speed; }
    void SetDarkHighReject(std::uint32_t count) { m_settings.darkHighRejectNum = count; }
    void SetDarkLowReject(std::uint32_t count) { m_settings.darkLowRejectNum = count; }
    void SetReferenceHighReject(std::uint32_t count) { m_settings.refHighRejectNum = count; }
    void SetReferenceLowReject(std::uint32_t count) { m_settings.refLowRejectNum = count; }
    void SetSampleHighReject(std::uint32_t count) { m_settings.sampleHighRejectNum = count; }
    void SetSampleLowReject(std::uint32_t count) { m_settings.sampleLowRejectNum = count; }
    void SetDetectorOutputLevel(double level) { m_settings.detectorOutputLevel = level; }
    void SetDetectorOutputLevelDeviation(double percent) { m_settings.detectorOutputLevelDev = percent; }
    void SetLEDDutyCycleAdjustStep(double percent) { m_settings.ledDutycycleAdjustStep = percent; }
    void SetLEDSettleTime(std::uint32_t time) { m_settings.ledSettleTime = time; }

private:
    bool InitializeDetectorSystem();
    bool InitializeEmitterSystem();
    bool InitializeReAgentDeliverySystem();
    bool InitializeSampleDeliverySystem();
    bool InitializeStirBarSystem();
    void ReleaseDetectorSystem();
    void ReleaseEmitterSystem();
    void ReleaseReAgentDeliverySystem();
    void ReleaseSampleDeliverySystem();
    void ReleaseStirBarSystem();

    void ExecuteLEDAdjustment(const StepParameters& step);
    void SetUpLEDController(MeasurementLEDController& controller, const StepParameters& step);
    void ExecuteWorkers(const StepParameters& step);
    void TakeCounts(StepType stepType);
    void SendStepData(const StepParameters& step) const;
    bool TurnPrimed();

    std::unique_ptr<DetectorProcessing> m_detector;
    std::unique_ptr<EmitterProcessing> m_emitter;
    std::unique_ptr<ReAgentDeliveryProcessing> m_reagent;
    std::unique_ptr<SampleDeliveryProcessing> m_sample;
    std::unique_ptr<StirBarProcessing> m_stir;

    double m_darkCount = 0.0;
    double m_referenceCount = 0.0;
    double m_sampleCount = 0.0;
    double m_darkDeviation = 0.0;
    double m_referenceDeviation = 0.0;
    double m_sampleDeviation = 0.0;

    std::uint32_t m_primeCount = 0;
    MeasurementSettings m_settings;
    std::uint32_t m_ledAdjustTime = 0;  // milliseconds

    std::unique_ptr<StepperDriverBase> m_stirMotor;
    std::unique_ptr<StepperDriverMotor> m_pumpMotor;
    std::unique_ptr<PwmChannel> m_ledPwm;
    std::unique_ptr<SpiDevice> m_spiDevice;
    std::unique_ptr<ValvePWM> m_valve;
};

// The end of the status texts of the adjustment and of the cycle: the duty in percent, followed by two percent signs,
// then the time.
StdString LEDResultText(double dutyCycle, std::uint32_t adjustTime);
