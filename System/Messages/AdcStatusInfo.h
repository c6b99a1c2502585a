// A request for analog readings and, with the readings, its response. One thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "Frameworks/Utilities/TimeSpec.h"
#include "Frameworks/Xml/XMLData.h"

// One reading of a signal.
struct AdcReading {
    std::int32_t seconds = 0;  // CLOCK_REALTIME
    std::int32_t nanoSeconds = 0;
    std::int32_t value = 0;  // counts or millivolts, by the signal
};

class AdcStatusInfo : public XMLData {
public:
    const TimeSpec& GetSampleInterval() const { return m_sampleInterval; }
    void SetSampleInterval(const TimeSpec& interval) { m_sampleInterval = interval; }

    // 65535 at most.
    std::uint16_t GetSignalId() const;
    void SetSignalId(std::uint32_t id);  // 65536 and above are stored as 65535

    // The setter limits the count to one byte, the getter to 16 bits: a request is for at most 255 readings.
    std::uint32_t GetSampleCount() const;
    void SetSampleCount(std::uint32_t count);  // 256 and above are stored as 255

    float GetSpareValue() const { return m_spareValue; }
    void SetSpareValue(float value);  // below 0 is stored as 0

    const std::vector<AdcReading>& GetReadings() const { return m_readings; }
    bool AddReading(std::int32_t seconds, std::int32_t nanoSeconds, std::int32_t value);  // false if none was added

private:
    TimeSpec m_sampleInterval{0, 0};
    std::uint32_t m_signalId = 0;
    std::uint32_t m_sampleCount = 0;
    float m_spareValue = 0.0F;
    std::vector<AdcReading> m_readings;
};
