#include "Frameworks/Utilities/CRC32.h"

namespace {

constexpr std::uint32_t Polynomial = 0x04C11DB7;
constexpr std::uint32_t TopBit = 0x80000000;
constexpr std::uint32_t AllBits = 0xFFFFFFFF;

constexpr std::uint32_t Reflect(std::uint32_t value, int bits) {
    std::uint32_t reflected = 0;
    for (int bit = 0; bit < bits; ++bit) {
        reflected |= ((value >> bit) & 1U) << (bits - 1 - bit);
    }
    return reflected;
}

constexpr std::uint32_t TableEntry(std::uint32_t index) {
    std::uint32_t entry = Reflect(index, 8) << 24;
    for (int step = 0; step < 8; ++step) {
        entry = (entry << 1) ^ ((entry & TopBit) != 0 ? Polynomial : 0);
    }
    return Reflect(entry, 32);
}

}  // namespace

CRC32::CRC32() : m_table() {
    for (std::uint32_t index = 0; index < m_table.size(); ++index) {
        m_table[index] = TableEntry(index);
    }
}

std::uint32_t CRC32::Compute(const std::uint8_t* data, std::size_t size) const {
    std::uint32_t crc = AllBits;
    for (std::size_t at = 0; at < size; ++at) {
        crc = (crc >> 8) ^ m_table[(crc & 0xFFU) ^ data[at]];
    }
    return crc ^ AllBits;
}

bool CRC32::Check(const std::vector<std::uint8_t>& data, std::uint32_t expected) const {
    return Compute(data) == expected;
}
