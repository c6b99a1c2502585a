// The words of the external 24-bit converter.
#pragma once

#include <cstdint>

#include "Drivers/Board.h"

// A word that is no reading, after a time-out or a bus that gave back the command.
inline constexpr std::uint32_t NoConverterReading = 0xFFFFFFFF;

inline constexpr std::uint32_t LastConverterPair = 199;  // a channel above is the internal temperature

// Cut to 16 bits, so pairs from 128 on repeat the lower ones.
constexpr std::uint16_t ConverterCommandWord(std::uint32_t channel) {
    const std::uint32_t selection =
        channel > LastConverterPair ? OnBoard::ConverterTemperature : channel * OnBoard::ConverterPairFactor;
    return static_cast<std::uint16_t>((OnBoard::ConverterCommand | selection) << OnBoard::ConverterCommandShift);
}

// The 25 bits of a reading in the 32-bit word of an answer.
constexpr std::uint32_t ConverterReading(std::uint32_t word) { return word >> 5U & 0x1FFFFFFU; }

// The signed count of a reading; bit 24 is set for a positive one.
constexpr std::int32_t ConverterCount(std::uint32_t reading) {
    constexpr std::uint32_t PositiveBit = 1U << 24U;
    const auto magnitude = static_cast<std::int32_t>(reading & (PositiveBit - 1U));
    return (reading & PositiveBit) != 0 ? magnitude : magnitude - static_cast<std::int32_t>(PositiveBit);
}
