#include "Drivers/FlagSensor.h"

#include <algorithm>

#include "Drivers/Board.h"

namespace {

constexpr std::uint32_t MinWait = 1000;
constexpr std::uint32_t MaxWait = 60000;

}  // namespace

std::int32_t FlagSensor::WaitTime(std::uint32_t milliseconds) {
    return static_cast<std::int32_t>(std::clamp(milliseconds, MinWait, MaxWait));
}

FlagSensor::FlagSensor() : m_pin(OnBoard::PumpHomeFlag, EDGE_GPIO_MODE, BOTH_GPIO_EDGE) {}

bool FlagSensor::IsHigh() const { return m_pin.Read() == HIGH_GPIO_LEVEL; }

bool FlagSensor::IsLow() const { return m_pin.Read() == LOW_GPIO_LEVEL; }

bool FlagSensor::WaitForHigh(std::uint32_t milliseconds) const {
    return m_pin.WaitForEdge(WaitTime(milliseconds)) == HIGH_GPIO_LEVEL;
}

bool FlagSensor::WaitForLow(std::uint32_t milliseconds) const {
    return m_pin.WaitForEdge(WaitTime(milliseconds)) == LOW_GPIO_LEVEL;
}
