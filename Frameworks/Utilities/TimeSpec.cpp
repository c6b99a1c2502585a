#include "Frameworks/Utilities/TimeSpec.h"

#include <algorithm>
#include <ctime>
#include <tuple>

namespace {

constexpr std::int32_t MaxNanoSeconds = 999999999;
constexpr std::uint32_t NanoSecondsPerTenth = 100000;

std::int32_t Limited(std::int32_t nanoSeconds) { return std::clamp(nanoSeconds, 0, MaxNanoSeconds); }

std::int64_t TotalNanoSeconds(const TimeSpec& time) {
    return std::int64_t{time.GetSeconds()} * NanoSecondsPerSecond + time.GetNanoSeconds();
}

std::int64_t NanoSecondsOfTenths(std::uint32_t tenths) { return std::int64_t{tenths & 0xFFFFU} * NanoSecondsPerTenth; }

}  // namespace

TimeSpec::TimeSpec() { GetTime(); }

TimeSpec::TimeSpec(std::int32_t seconds, std::int32_t nanoSeconds)
    : m_seconds(seconds), m_nanoSeconds(Limited(nanoSeconds)) {}

void TimeSpec::SetNanoSeconds(std::int32_t nanoSeconds) { m_nanoSeconds = Limited(nanoSeconds); }

void TimeSpec::SetTenthMilliSeconds(std::uint32_t tenths) {
    const std::int64_t total = NanoSecondsOfTenths(tenths);
    m_seconds = static_cast<std::int32_t>(total / NanoSecondsPerSecond);
    m_nanoSeconds = static_cast<std::int32_t>(total % NanoSecondsPerSecond);
}

bool TimeSpec::GetTime() {
    timespec now{};
    if (clock_gettime(CLOCK_REALTIME, &now) != 0) {
        return false;
    }
    m_seconds = static_cast<std::int32_t>(now.tv_sec);
    m_nanoSeconds = static_cast<std::int32_t>(now.tv_nsec);
    return true;
}

TimeSpec& TimeSpec::operator+=(const TimeSpec& other) {
    m_seconds += other.m_seconds;
    return *this += static_cast<std::uint32_t>(other.m_nanoSeconds);
}

TimeSpec& TimeSpec::operator+=(std::uint32_t nanoSeconds) {
    if (nanoSeconds <= MaxNanoSeconds && m_nanoSeconds + static_cast<std::int32_t>(nanoSeconds) <= MaxNanoSeconds) {
        m_nanoSeconds += static_cast<std::int32_t>(nanoSeconds);
    }
    return *this;
}

TimeSpec& TimeSpec::operator-=(const TimeSpec& other) {
    m_seconds -= other.m_seconds;
    return *this -= static_cast<std::uint32_t>(other.m_nanoSeconds);
}

TimeSpec& TimeSpec::operator-=(std::uint32_t nanoSeconds) {
    if (nanoSeconds > MaxNanoSeconds) {
        return *this;
    }
    const auto count = static_cast<std::int32_t>(nanoSeconds);
    if (count > m_nanoSeconds) {
        m_seconds -= 1;
        m_nanoSeconds += NanoSecondsPerSecond;
    }
    m_nanoSeconds -= count;
    return *this;
}

bool operator<(const TimeSpec& left, const TimeSpec& right) {
    return std::tie(left.m_seconds, left.m_nanoSeconds) < std::tie(right.m_seconds, right.m_nanoSeconds);
}

bool TimeSpec::IsBelowNanoSeconds(std::int64_t nanoSeconds) const { return TotalNanoSeconds(*this) < nanoSeconds; }

bool TimeSpec::IsAboveNanoSeconds(std::int64_t nanoSeconds) const { return TotalNanoSeconds(*this) > nanoSeconds; }

bool TimeSpec::IsBelowTenthMilliSeconds(std::uint32_t tenths) const {
    return IsBelowNanoSeconds(NanoSecondsOfTenths(tenths));
}

bool TimeSpec::IsAboveTenthMilliSeconds(std::uint32_t tenths) const {
    return IsAboveNanoSeconds(NanoSecondsOfTenths(tenths));
}

bool TimeSpec::Sleep(const TimeSpec* request, TimeSpec* remainder, bool retry) {
    if (request == nullptr || remainder == nullptr) {
        return false;
    }
    if (request->m_seconds <= 0 || request->m_nanoSeconds <= 0 || request->m_nanoSeconds > MaxNanoSeconds) {
        return false;
    }
    timespec wanted{};
    wanted.tv_sec = request->m_seconds;
    wanted.tv_nsec = request->m_nanoSeconds;
    timespec left{};
    while (nanosleep(&wanted, &left) != 0) {
        remainder->m_seconds = static_cast<std::int32_t>(left.tv_sec);
        remainder->m_nanoSeconds = static_cast<std::int32_t>(left.tv_nsec);
        if (!retry) {
            return false;
        }
        wanted = left;
    }
    return true;
}
