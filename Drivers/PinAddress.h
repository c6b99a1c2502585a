// How the board names a digital line: the PIO controller A to D as bank 0 to 3, and the line in it, 0 to 31.
#pragma once

#include <cstdint>

// Of each bank.
inline constexpr std::uint32_t PinsPerBank = 32;

struct PinAddress {
    std::uint32_t bank = 0;
    std::uint32_t pin = 0;
};
