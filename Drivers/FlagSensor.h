// The home flag of the reagent pump: high on a part of the turn. Claims its line from construction to destruction. One
// thread at a time.
#pragma once

#include <cstdint>

#include "Drivers/GpioPin.h"

class FlagSensor {
public:
    FlagSensor();

    // Both are false while the line is not claimed.
    bool IsHigh() const;
    bool IsLow() const;

    // Until the next edge; true if the flag is then high, or low. Milliseconds, held within 1000 to 60000.
    bool WaitForHigh(std::uint32_t milliseconds) const;
    bool WaitForLow(std::uint32_t milliseconds) const;

    // The time that a wait of so many milliseconds takes at most.
    static std::int32_t WaitTime(std::uint32_t milliseconds);

private:
    GpioPin m_pin;
};
