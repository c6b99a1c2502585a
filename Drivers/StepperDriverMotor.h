// A stepper motor with a current limit, which moves by angle. The position is open loop: the angle is frequency times
// time. The object is held from the start of a move to Brake, so that a second caller waits; StartMotor, Stop and Brake
// are for the caller that holds it. Failure texts go to the standard output.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "Drivers/HeldLock.h"
#include "Drivers/StepperDriverBase.h"

class StepperDriverMotor : public StepperDriverBase {
public:
    // PWM channel 0 to 3.
    explicit StepperDriverMotor(std::uint8_t channel) : StepperDriverBase(channel) {}
    StepperDriverMotor(const StepperDriverMotor&) = delete;
    StepperDriverMotor& operator=(const StepperDriverMotor&) = delete;
    ~StepperDriverMotor();

    // The lines of bit 0, bit 1 and bit 2. True if the object is valid.
    bool SetUpCurrentLimit(const std::array<PinAddress, 3>& lines, std::uint32_t initialLimit);
    // 1 to 7; any other limit counts as 0.
    bool SetCurrentLimit(std::uint32_t limit);

    // Runs until Stop, and is held until Brake, also when it failed.
    bool StartMotor(float dutyCycle, float frequency, std::uint32_t limit);
    // Degrees above 0.0, percent above 0.0 to 100.0, milliseconds not 0. A move that fails while it holds the object
    // keeps it until Brake, and later moves wait.
    bool MoveAngle(float angle, float dutyCycle, std::uint32_t milliseconds, bool busyWait);
    // Holds the shaft without current: the chip stays enabled with the limit at 0.
    bool Brake();

private:
    bool RunAngle(float angle, float dutyCycle, std::uint32_t milliseconds, bool busyWait);

    HeldLock m_lock;
    std::array<std::unique_ptr<GpioPin>, 3> m_limitPins;
};
