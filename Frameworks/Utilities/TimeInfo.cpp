#include "Frameworks/Utilities/TimeInfo.h"

#include <tuple>

#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TimeSpec.h"

namespace {

constexpr char TimeSample[] = "MDT 2012-12-31 12:59:59.xxxxxxxxx";
constexpr double SecondsPerDay = 86400.0;
constexpr double XcelDayOfEpoch = 25569.0;

}  // namespace

const StdString& TimeInfo::DefaultFormat() {
    static const StdString format("%Z %Y-%m-%d %H:%M:%S");
    return format;
}

TimeInfo::TimeInfo() { ResetTime(); }

TimeInfo::TimeInfo(std::uint32_t milliseconds) : TimeInfo() { AddMilliSeconds(milliseconds); }

TimeInfo& TimeInfo::operator=(const timespec& time) {
    m_seconds = static_cast<std::int32_t>(time.tv_sec);
    m_nanoSeconds = static_cast<std::int32_t>(time.tv_nsec);
    return *this;
}

void TimeInfo::ResetTime() {
    timespec now{};
    if (clock_gettime(CLOCK_REALTIME, &now) != 0) {
        ReportError("TimeInfo::ResetTime  Unable to get time from RealTime clock", SYSTEM_CONTROL);
        return;
    }
    *this = now;
}

void TimeInfo::AddMilliSeconds(std::uint32_t milliseconds) {
    m_seconds += static_cast<std::int32_t>(milliseconds / 1000);
    m_nanoSeconds += static_cast<std::int32_t>(milliseconds % 1000 * 1000000);
}

bool operator<(const TimeInfo& left, const TimeInfo& right) {
    return std::tie(left.m_seconds, left.m_nanoSeconds) < std::tie(right.m_seconds, right.m_nanoSeconds);
}

bool operator==(const TimeInfo& left, const TimeInfo& right) {
    return left.m_seconds == right.m_seconds && left.m_nanoSeconds == right.m_nanoSeconds;
}

void TimeInfo::SetInfinite() {
    m_seconds = -1;
    m_nanoSeconds = -1;
}

void TimeInfo::Clear() {
    m_seconds = 0;
    m_nanoSeconds = 0;
}

timespec TimeInfo::GetTimespec() const {
    timespec time{};
    time.tv_sec = m_seconds;
    time.tv_nsec = m_nanoSeconds;
    return time;
}

StdString TimeInfo::GetTimeString(unsigned digits) const {
    tzset();
    const time_t seconds = m_seconds;
    tm local{};
    if (localtime_r(&seconds, &local) == nullptr) {
        return {};
    }
    char buffer[sizeof TimeSample] = "";
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    if (std::strftime(buffer, sizeof buffer, Format().CString(), &local) == 0) {
        ReportError("TimeInfo::GetTimeString  Unable to get formatted time string", SYSTEM_CONTROL);
    }
#pragma GCC diagnostic pop
    StdString text(buffer);
    if (digits == 0 || !(Format() == DefaultFormat() || Format().Right(2) == "%S")) {
        return text;
    }
    StdString fraction;
    fraction.FromInteger(m_nanoSeconds);
    return text + "." + (digits > 9 ? fraction : fraction.Left(static_cast<int>(digits)));
}

double TimeInfo::GetXcelTime() const {
    const std::int32_t wholeSeconds = m_seconds + m_nanoSeconds / NanoSecondsPerSecond;
    return wholeSeconds / SecondsPerDay + XcelDayOfEpoch;
}
