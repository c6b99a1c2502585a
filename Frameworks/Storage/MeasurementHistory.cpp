#include "Frameworks/Storage/MeasurementHistory.h"

#include <iostream>

#include "Frameworks/Utilities/CRC32.h"

namespace {

constexpr std::size_t MaxPoints = 3000;
constexpr std::size_t FieldSize = 4;

}  // namespace

MeasurementHistory& MeasurementHistory::operator=(const MeasurementHistory& other) {
    if (this == &other) {
        return *this;
    }
    m_reserved = other.m_reserved;
    m_lastCRC = other.m_lastCRC;
    Clear();
    if (Size() == 0) {
        m_points = other.m_points;
    }
    return *this;
}

bool MeasurementHistory::Add(std::uint32_t seconds, float measurement) {
    const std::size_t sizeBefore = Size();
    m_scratch.clear();
    if (!AppendToScratch(&seconds) || !AppendToScratch(&measurement)) {
        return false;
    }
    m_lastCRC = CRC32().Compute(m_scratch);
    m_lastPoint.SetCRC(m_lastCRC).SetSeconds(seconds).SetMeasurement(measurement);
    m_points.push_back(m_lastPoint);
    if (sizeBefore < MaxPoints) {
        return true;
    }
    while (Size() > MaxPoints) {
        m_points.pop_front();
    }
    return Size() == MaxPoints;
}

bool MeasurementHistory::AppendToScratch(const void* value) {
    const std::size_t wanted = m_scratch.size() + FieldSize;
    const auto* bytes = static_cast<const std::uint8_t*>(value);
    m_scratch.insert(m_scratch.end(), bytes, bytes + FieldSize);
    return m_scratch.size() == wanted;
}

bool MeasurementHistory::Get(std::size_t index, MeasurementDataPoint& point) const {
    if (index > Size()) {
        return false;
    }
    if (index < Size()) {
        point = m_points[index];
    }
    return true;
}

void MeasurementHistory::Print() const {
    for (const MeasurementDataPoint& point : m_points) {
        std::cout << "CRC:         " << point.GetCRC() << "\n"
                  << "Seconds:     " << point.GetSeconds() << "\n"
                  << "Measurement: " << point.GetMeasurement() << std::endl;
    }
}
