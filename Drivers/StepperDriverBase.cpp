#include "Drivers/StepperDriverBase.h"

#include "Drivers/HeldLock.h"
#include "Drivers/Print.h"
#include "Drivers/Wait.h"

namespace {

constexpr std::uint8_t ChannelCount = 4;

// By PWM channel, for all motors of the process.
constinit HeldLock channelLocks[ChannelCount];

bool IsInRange(float dutyCycle, float frequency) {
    return frequency >= PwmChannel::MinFrequency && frequency <= PwmChannel::MaxFrequency && dutyCycle > 0.0F &&
           dutyCycle <= PwmChannel::MaxDutyCycle;
}

bool MakeOutput(std::unique_ptr<GpioPin>& line, PinAddress address, std::int32_t level) {
    return ClaimOutput(address, line) && line->Write(level);
}

}  // namespace

StepperDriverBase::StepperDriverBase(std::uint8_t channel) : m_valid(channel < ChannelCount), m_channel(channel) {
    if (!m_valid) {
        PrintOutput("StepperDriverBase: Invalid PWM channel");
    }
}

StepperDriverBase::~StepperDriverBase() {
    m_pwm.reset();
    m_enablePin.reset();
    m_directionPin.reset();
    if (m_channel < ChannelCount) {
        channelLocks[m_channel].Unlock(this);
    }
}

bool StepperDriverBase::SetUpPins(PinAddress enable, PinAddress direction) {
    if (m_valid && !MakeOutput(m_directionPin, direction, LOW_GPIO_LEVEL)) {
        m_valid = FailWithOutput("StepperDriverBase: Setting up direction GPIO pin failed");
    }
    return SetUpEnablePin(enable);
}

bool StepperDriverBase::SetUpEnablePin(PinAddress enable) {
    if (m_valid && !MakeOutput(m_enablePin, enable, HIGH_GPIO_LEVEL)) {
        m_valid = FailWithOutput("StepperDriverBase: Setting up enable GPIO pin failed");
    }
    if (m_valid) {
        m_pwm.reset();
        m_pwm = std::make_unique<PwmChannel>(m_channel);
    }
    return m_valid;
}

// A thread that starts its own running motor again would wait for itself without end, so the lock fails instead.
bool StepperDriverBase::Start(float dutyCycle, float frequency) {
    if (!m_valid) {
        return false;
    }
    if (!IsInRange(dutyCycle, frequency)) {
        return FailWithOutput("Invalid PWM frequency or duty cycle in StepperDriver::Start");
    }
    HeldLock& lock = channelLocks[m_channel];
    if (lock.IsHeldHere(this)) {
        return FailWithOutput("Stepper Driver: PWM mutex lock failed");
    }
    lock.Lock(this);
    if (WriteEnablePin(LOW_GPIO_LEVEL) && m_pwm != nullptr && m_pwm->Set(frequency, dutyCycle)) {
        return true;
    }
    PrintOutput("Stepper Driver: PWM enable or chip enable failed");
    Stop();
    return false;
}

bool StepperDriverBase::Stop() {
    if (!m_valid) {
        return false;
    }
    const bool pwmDisabled = m_pwm != nullptr && m_pwm->Enable(false);
    const bool chipDisabled = WriteEnablePin(HIGH_GPIO_LEVEL);
    const bool disabled =
        (pwmDisabled && chipDisabled) || FailWithOutput("Stepper Driver: PWM disable or chip disable failed");
    const bool unlocked =
        channelLocks[m_channel].Unlock(this) || FailWithOutput("Stepper Driver: PWM mutex unlock failed");
    return disabled && unlocked;
}

bool StepperDriverBase::RunForTime(float dutyCycle, float frequency, std::uint32_t milliseconds, bool busyWait) {
    if (milliseconds == 0) {
        return true;
    }
    if (!Start(dutyCycle, frequency)) {
        return false;
    }
    WaitFor(milliseconds, busyWait);
    return Stop();
}

bool StepperDriverBase::WriteEnablePin(std::int32_t level) {
    return m_enablePin != nullptr && m_enablePin->Write(level);
}
