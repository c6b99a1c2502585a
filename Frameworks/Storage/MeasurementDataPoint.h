// One result of the binary history: time, value, and a checksum over both. One thread at a time.
#pragma once

#include <cstdint>

class MeasurementDataPoint {
public:
    MeasurementDataPoint() = default;
    MeasurementDataPoint(const MeasurementDataPoint&) = default;
    MeasurementDataPoint& operator=(const MeasurementDataPoint&) = default;
    virtual ~MeasurementDataPoint() = default;

    std::uint32_t GetSeconds() const { return m_seconds; }
    float GetMeasurement() const { return m_measurement; }
    std::uint32_t GetCRC() const { return m_crc; }

    // Each returns the object.
    MeasurementDataPoint& SetSeconds(std::uint32_t seconds) {
        m_seconds = seconds;
        return *this;
    }
    MeasurementDataPoint& SetMeasurement(float measurement) {
        m_measurement = measurement;
        return *this;
    }
    MeasurementDataPoint& SetCRC(std::uint32_t crc) {
        m_crc = crc;
        return *this;
    }

private:
    std::uint32_t m_seconds = 0;
    float m_measurement = 0.0F;
    std::uint32_t m_crc = 0;
};
