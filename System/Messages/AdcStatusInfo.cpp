#include "System/Messages/AdcStatusInfo.h"

#include <algorithm>

namespace {

constexpr std::uint32_t Max16Bits = 65535;
constexpr std::uint32_t Max8Bits = 255;

}  // namespace

std::uint16_t AdcStatusInfo::GetSignalId() const { return static_cast<std::uint16_t>(std::min(m_signalId, Max16Bits)); }

void AdcStatusInfo::SetSignalId(std::uint32_t id) { m_signalId = std::min(id, Max16Bits); }

std::uint32_t AdcStatusInfo::GetSampleCount() const { return std::min(m_sampleCount, Max16Bits); }

void AdcStatusInfo::SetSampleCount(std::uint32_t count) { m_sampleCount = std::min(count, Max8Bits); }

void AdcStatusInfo::SetSpareValue(float value) { m_spareValue = value > 0.0F ? value : 0.0F; }

bool AdcStatusInfo::AddReading(std::int32_t seconds, std::int32_t nanoSeconds, std::int32_t value) {
    const std::size_t before = m_readings.size();
    m_readings.push_back({seconds, nanoSeconds, value});
    return m_readings.size() == before + 1;
}
