// Words at physical addresses, through the kernel's memory device. The page is mapped again for each access: accesses
// are rare. Failure texts go to the error stream. One thread at a time.
#pragma once

#include <cstdint>

class PhysicalMemory {
public:
    PhysicalMemory() = default;
    PhysicalMemory(const PhysicalMemory&) = delete;
    PhysicalMemory& operator=(const PhysicalMemory&) = delete;
    ~PhysicalMemory() { Close(); }

    // False if the device is missing or refused.
    bool Open();
    void Close();

    // Address: a multiple of 4. False if the page cannot be mapped; the value is then unchanged.
    bool ReadWord(std::uint32_t address, std::uint32_t& value) const;
    bool WriteWord(std::uint32_t address, std::uint32_t value) const;

private:
    int m_descriptor = -1;
};
