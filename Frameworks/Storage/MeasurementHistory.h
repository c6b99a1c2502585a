// The last 3000 results in order of arrival, each with a computed checksum. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "Frameworks/Storage/MeasurementDataPoint.h"

class MeasurementHistory {
public:
    MeasurementHistory() = default;
    MeasurementHistory(const MeasurementHistory& other) { *this = other; }
    MeasurementHistory& operator=(const MeasurementHistory& other);  // all except the last point
    ~MeasurementHistory() = default;

    // Drops the oldest of more than 3000.
    bool Add(std::uint32_t seconds, float measurement);
    // By the point's time and value; computes a new checksum.
    bool Add(const MeasurementDataPoint& point) { return Add(point.GetSeconds(), point.GetMeasurement()); }

    // Returns false for an index above the size. The size itself gives true and leaves the point unchanged.
    bool Get(std::size_t index, MeasurementDataPoint& point) const;

    std::size_t Size() const { return m_points.size(); }
    void Clear() { m_points.clear(); }

    void Print() const;  // to the standard output, three lines per result

    // Of the last Add. Clear and assignment keep the point; an assignment replaces the checksum.
    const MeasurementDataPoint& GetLastPoint() const { return m_lastPoint; }
    std::uint32_t GetLastCRC() const { return m_lastCRC; }

private:
    bool AppendToScratch(const void* value);

    std::deque<MeasurementDataPoint> m_points;
    MeasurementDataPoint m_lastPoint;
    std::uint32_t m_reserved = 0;
    std::uint32_t m_lastCRC = 0;
    std::vector<std::uint8_t> m_scratch;  // the bytes of the checksum
};
