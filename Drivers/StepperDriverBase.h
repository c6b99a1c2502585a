// A motor on a stepper driver chip: a pulse train from a PWM channel, an enable line (active low) and, on some motors,
// a direction line. One pulse is one step, 1600 steps are one revolution. Failure texts go to the standard output. A
// channel is held from Start to Stop, across all objects and threads: a channel drives one motor at a time, and Start
// on a busy channel waits. Otherwise one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "Drivers/GpioPin.h"
#include "Drivers/PinAddress.h"
#include "Drivers/PwmChannel.h"

class StepperDriverBase {
public:
    // PWM channel 0 to 3.
    explicit StepperDriverBase(std::uint8_t channel);
    StepperDriverBase(const StepperDriverBase&) = delete;
    StepperDriverBase& operator=(const StepperDriverBase&) = delete;
    // Gives the channel back if the motor still runs.
    ~StepperDriverBase();

    bool IsValid() const { return m_valid; }

    // Before anything else, one of the two. True if the object is valid; the chip is left disabled.
    bool SetUpPins(PinAddress enable, PinAddress direction);
    bool SetUpEnablePin(PinAddress enable);

    // Duty above 0.0 to 100.0 percent, frequency 1.0 to 1e8 hertz, which are steps per second.
    bool Start(float dutyCycle, float frequency);
    // Disables PWM and chip, also of a motor at rest. False also if another object holds the channel.
    bool Stop();
    // 0 milliseconds: true, and nothing happens.
    bool RunForTime(float dutyCycle, float frequency, std::uint32_t milliseconds, bool busyWait);

protected:
    void SetInvalid() { m_valid = false; }
    // 0 enables the chip, 1 disables it.
    bool WriteEnablePin(std::int32_t level);

private:
    bool m_valid = false;
    std::uint8_t m_channel;
    std::unique_ptr<PwmChannel> m_pwm;
    std::unique_ptr<GpioPin> m_enablePin;
    std::unique_ptr<GpioPin> m_directionPin;
};
