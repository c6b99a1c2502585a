// The last 3000 results in their order of arrival, each with the checksum that was computed here. One thread at a time.
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
    MeasurementHistory& operator=(const MeasurementHistory& other);  // all but the last point
    ~MeasurementHistory() = default;

    // Drops the oldest where there are 3000 already.
    bool Add(std::uint32_t seconds, float measurement);
    // By the point's time and value; its checksum is computed anew.
    bool Add(const MeasurementDataPoint& point) { return Add(point.GetSeconds(), point.GetMeasurement()); }

    // False above the size. The size itself is not refused, and is nothing to ask for: the point stays as it was.
    bool Get(std::size_t index, MeasurementDataPoint& point) const;

    std::size_t Size() const { return m_points.size(); }
    void Clear() { m_points.clear(); }

    void Print() const;  // to the standard output, three lines a result

    // Of the latest add, whatever was cleared or assigned since; an assignment does replace the checksum.
    const MeasurementDataPoint& GetLastPoint() const { return m_lastPoint; }
    std::uint32_t GetLastCRC() const { return m_lastCRC; }

private:
    bool AppendToScratch(const void* value);

    std::deque<MeasurementDataPoint> m_points;
    MeasurementDataPoint m_lastPoint;
    std::uint32_t m_reserved = 0;
    std::uint32_t m_lastCRC = 0;
    std::vector<std::uint8_t> m_scratch;  // what the checksum is computed over
};
