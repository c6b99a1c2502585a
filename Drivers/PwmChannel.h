// One channel of the kernel's PWM chip 0, claimed by construction, disabled and released by destruction. Frequency in
// hertz, duty cycle in percent. Failure texts go to the error stream, one to the standard output. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

class PwmChannel {
public:
    // What a channel is given, in hertz and percent.
    static constexpr float MinFrequency = 1.0F;
    static constexpr float MaxFrequency = 1e8F;
    static constexpr float MinDutyCycle = 0.0F;
    static constexpr float MaxDutyCycle = 100.0F;

    // Channel 0 to 9. Frequency and duty cycle are not set, the channel is not enabled.
    explicit PwmChannel(std::uint8_t channel);
    // The channel starts enabled.
    PwmChannel(std::uint8_t channel, float frequency, float dutyCycle);
    PwmChannel(const PwmChannel&) = delete;
    PwmChannel& operator=(const PwmChannel&) = delete;
    ~PwmChannel();

    // The code of the first character of the kernel's count, so 52 for "4"; 0 if the chip is missing. Only a missing
    // chip refuses a channel.
    static std::uint32_t ChannelCount();

    // Whether the last construction or release step succeeded.
    bool IsValid() const { return m_valid; }
    // The last values given, held within the limits above.
    float GetFrequency() const { return m_frequency; }
    float GetDutyCycle() const { return m_dutyCycle; }

    // Claim and release. False if the channel is claimed already, or is not claimed.
    bool Export();
    bool Unexport();

    // False if the channel is not claimed, or its file is missing.
    bool Enable(bool on);
    // True also if the state cannot be read, so that a caller who wants the channel off disables it.
    bool IsEnabled() const;

    // Both leave the channel enabled, whatever its state was. The chip is given the values as they are, out of range or
    // not; what it refuses goes unnoticed.
    bool Set(float frequency, float dutyCycle);
    bool SetFrequency(float frequency) { return Set(frequency, m_dutyCycle); }
    bool SetDutyCycle(float dutyCycle) { return Set(m_frequency, dutyCycle); }

private:
    bool Claim(std::uint8_t channel);
    void Store(float frequency, float dutyCycle);
    bool WritePeriodAndDuty(float frequency, float dutyCycle);
    std::string Directory() const;
    std::string Digit() const;

    bool m_valid = false;
    std::uint8_t m_channel;
    float m_frequency = 0.0F;
    float m_dutyCycle = 0.0F;
};
