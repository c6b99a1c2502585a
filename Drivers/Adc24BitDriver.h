// One guarded conversion of the external 24-bit converter: command, chip select, end of conversion, result. All objects
// share one SPI device and one lock, so any number of threads may read at once, each with its own object, and take
// turns. A read takes up to 250 ms and uses the processor for all of it. Failure texts go to the standard output.
#pragma once

#include <cstdint>

class SpiDevice;

class Adc24BitDriver {
public:
    // 0 to 199: an input pair of the converter (0 to 6 are wired); 200: its internal temperature.
    explicit Adc24BitDriver(std::uint32_t channel) : m_channel(channel) {}

    // True on a good reading. With convert, only channels 0 and 200 have a conversion: on any other the reading is
    // taken and the result is false.
    bool Read(bool convert);

    // The last reading to a value: the plain count on channel 0, hundredths of a degree on channel 200.
    bool Convert();

    // The last converted value.
    std::int32_t GetValue() const { return m_value; }
    // The last reading, 25 bits, bit 24 set for a positive value; 0xFFFFFFFF after a time-out.
    std::uint32_t GetRaw() const { return m_raw; }

private:
    bool ReadLocked(SpiDevice& device, bool convert);
    bool StartConversion(SpiDevice& device) const;
    void ReadResult(SpiDevice& device);

    bool m_valid = true;
    std::uint32_t m_channel;
    std::uint32_t m_raw = 0;
    std::int32_t m_value = 0;
};
