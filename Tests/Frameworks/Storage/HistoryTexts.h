// Makes points and histories, and shows them as text.
#pragma once

#include <string>

#include "Frameworks/Storage/MeasurementHistory.h"

inline MeasurementDataPoint PointOf(std::uint32_t crc, std::uint32_t seconds, float measurement) {
    MeasurementDataPoint point;
    point.SetCRC(crc).SetSeconds(seconds).SetMeasurement(measurement);
    return point;
}

// "CRC seconds value".
inline std::string TextOf(const MeasurementDataPoint& point) {
    return std::to_string(point.GetCRC()) + " " + std::to_string(point.GetSeconds()) + " " +
           std::to_string(point.GetMeasurement());
}

// One line per result.
inline std::string TextOf(const MeasurementHistory& history) {
    std::string text;
    for (std::size_t index = 0; index < history.Size(); ++index) {
        MeasurementDataPoint point;
        history.Get(index, point);
        text += TextOf(point) + "\n";
    }
    return text;
}

constexpr std::uint32_t FirstSum = 0x1FEEF2CA;   // of 1 s, 0.5
constexpr std::uint32_t SecondSum = 0x5A9B2267;  // of 2 s, 1.5
inline const std::string FirstLine = std::to_string(FirstSum) + " 1 0.500000\n";
inline const std::string SecondLine = std::to_string(SecondSum) + " 2 1.500000\n";
