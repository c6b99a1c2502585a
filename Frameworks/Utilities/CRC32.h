// CRC-32 in its common form (IEEE 802.3, zlib): reflected polynomial 0x04C11DB7, initial value 0xFFFFFFFF, final
// complement. "123456789" gives 0xCBF43926, nothing gives 0. Any number of threads may compute with one object.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class CRC32 {
public:
    CRC32();
    virtual ~CRC32() = default;

    // Of all bytes.
    std::uint32_t Compute(const std::uint8_t* data, std::size_t size) const;
    std::uint32_t Compute(const std::vector<std::uint8_t>& data) const { return Compute(data.data(), data.size()); }
    bool Check(const std::vector<std::uint8_t>& data, std::uint32_t expected) const;

private:
    std::array<std::uint32_t, 256> m_table;
};
