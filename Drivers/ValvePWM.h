// A solenoid valve on a PWM channel: opened with full power, then held with less. A valve belongs to one thread.
// Failure texts go to the standard output.
#pragma once

#include <cstdint>
#include <memory>

#include "Drivers/PwmChannel.h"

class ValvePWM {
public:
    // Percent: full power.
    static constexpr float OpeningDutyCycle = 100.0F;

    // Frequency in hertz.
    ValvePWM(std::uint8_t channel, std::uint16_t frequency) : m_channel(channel), m_frequency(frequency) {}
    ValvePWM(const ValvePWM&) = delete;
    ValvePWM& operator=(const ValvePWM&) = delete;
    ~ValvePWM() = default;

    // Claims the channel; the valve is left as it is. True.
    bool Initialize();
    // Milliseconds at the opening duty, then the duty to hold with, in percent. A delay of 0 or less never drops.
    void SetSwitchValues(std::int32_t switchDelay, float holdDuty);

    // Duty in percent. Spins for the switch delay. False before Initialize.
    bool ValveOn(float dutyCycle);
    bool ValveOff();

private:
    bool m_initialized = false;
    std::unique_ptr<PwmChannel> m_pwm;
    std::uint8_t m_channel;
    std::uint16_t m_frequency;
    std::int32_t m_switchDelay = -1;
    float m_holdDuty = 100.0F;
};
