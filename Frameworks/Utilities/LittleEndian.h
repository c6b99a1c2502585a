// Numbers as bytes, low byte first, on any processor. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

inline void PutLittleEndian(std::uint8_t* bytes, std::size_t size, std::uint64_t value) {
    for (std::size_t at = 0; at < size; ++at) {
        bytes[at] = static_cast<std::uint8_t>(value >> (8 * at));
    }
}

// Up to eight bytes.
inline std::uint64_t GetLittleEndian(const std::uint8_t* bytes, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t at = 0; at < size; ++at) {
        value |= static_cast<std::uint64_t>(bytes[at]) << (8 * at);
    }
    return value;
}
