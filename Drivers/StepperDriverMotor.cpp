#include "Drivers/StepperDriverMotor.h"

#include "Drivers/Print.h"

namespace {

constexpr std::uint32_t MovingLimit = 7;
constexpr std::uint32_t RestingLimit = 0;
constexpr std::uint32_t MaxLimit = 7;

constexpr float DegreesPerRevolution = 360.0F;
constexpr float StepsPerRevolution = 1600.0F;
constexpr float MillisecondsPerSecond = 1000.0F;

}  // namespace

StepperDriverMotor::~StepperDriverMotor() {
    for (auto& line : m_limitPins) {
        line.reset();
    }
}

bool StepperDriverMotor::SetUpCurrentLimit(const std::array<PinAddress, 3>& lines, std::uint32_t initialLimit) {
    bool areOutputs = true;
    for (std::size_t bit = 0; bit < lines.size(); ++bit) {
        areOutputs = ClaimOutput(lines[bit], m_limitPins[bit]) && areOutputs;
    }
    if (!areOutputs) {
        PrintOutput("Setting current limit GPIO pin(s) to outputs failed");
    }
    if (!areOutputs || !SetCurrentLimit(initialLimit)) {
        SetInvalid();
    }
    return IsValid();
}

// All lines are written, also after one that fails.
bool StepperDriverMotor::SetCurrentLimit(std::uint32_t limit) {
    if (!IsValid()) {
        return false;
    }
    const std::uint32_t bits = limit <= MaxLimit ? limit : RestingLimit;
    bool written = true;
    for (std::size_t bit = 0; bit < m_limitPins.size(); ++bit) {
        const auto level = static_cast<std::int32_t>(bits >> bit & 1U);
        written = m_limitPins[bit] != nullptr && m_limitPins[bit]->Write(level) && written;
    }
    return written || FailWithOutput("Reagent Stepper Motor: Setting current limit pin values failed");
}

bool StepperDriverMotor::StartMotor(float dutyCycle, float frequency, std::uint32_t limit) {
    if (IsValid()) {
        m_lock.Lock(this);
        if (SetCurrentLimit(limit) && Start(dutyCycle, frequency)) {
            return true;
        }
    }
    return FailWithOutput("StepperDriverMotor: Start operation failed");
}

bool StepperDriverMotor::MoveAngle(float angle, float dutyCycle, std::uint32_t milliseconds, bool busyWait) {
    const bool inRange = IsValid() && angle > 0.0F && dutyCycle > 0.0F && dutyCycle <= PwmChannel::MaxDutyCycle;
    if (inRange && milliseconds != 0) {
        m_lock.Lock(this);
        if (SetCurrentLimit(MovingLimit) && RunAngle(angle, dutyCycle, milliseconds, busyWait) && Brake()) {
            return true;
        }
    }
    return FailWithOutput("StepperDriverMotor::MoveAngle failed!");
}

bool StepperDriverMotor::RunAngle(float angle, float dutyCycle, std::uint32_t milliseconds, bool busyWait) {
    const float pulses = angle / DegreesPerRevolution * StepsPerRevolution;
    const float seconds = static_cast<float>(milliseconds) / MillisecondsPerSecond;
    return RunForTime(dutyCycle, 1.0F / (seconds / pulses), milliseconds, busyWait);
}

// The homing of the pump brakes a motor twice, so an object that is no longer held is no failure.
bool StepperDriverMotor::Brake() {
    bool braked = false;
    if (IsValid()) {
        const bool limited = SetCurrentLimit(RestingLimit);
        braked = WriteEnablePin(LOW_GPIO_LEVEL) && limited;
    }
    m_lock.Unlock(this);
    return braked || FailWithOutput("StepperDriverMotor: Brake operation failed");
}
