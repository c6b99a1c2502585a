// One input of the processor's own converter. Failure texts go to the error stream. One thread at a time.
#pragma once

#include <cstdint>

class ADC {
public:
    // Input 0 to 11. False if the converter is missing.
    bool Open(std::uint32_t input);

    // False before Open, without a text.
    bool ReadRaw(std::int32_t& counts) const;
    // Millivolts a count, as the kernel gives them.
    bool ReadScale(float& scale) const;
    // Volts.
    bool ReadVoltage(float& voltage) const;

private:
    std::int32_t m_input = -1;
};
