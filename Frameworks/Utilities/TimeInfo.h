// A point in time on CLOCK_REALTIME, or a length, with its text forms. One thread at a time; the clock and the time
// zone may be read from any thread.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>

#include "Frameworks/Utilities/StdString.h"

class TimeInfo {
public:
    static const StdString& DefaultFormat();  // "%Z %Y-%m-%d %H:%M:%S"

    TimeInfo();                                     // now
    explicit TimeInfo(std::uint32_t milliseconds);  // now plus that many
    TimeInfo(const TimeInfo&) = default;
    TimeInfo(TimeInfo&&) = default;
    TimeInfo& operator=(const TimeInfo&) = default;
    TimeInfo& operator=(TimeInfo&&) = default;
    TimeInfo& operator=(const timespec& time);
    virtual ~TimeInfo() = default;

    void ResetTime();  // now; if the clock can't be read, the fields stay
    // Nanoseconds are not carried into seconds, so a wait of a fractional number of seconds may end early. The
    // controllers are tuned to that.
    void AddMilliSeconds(std::uint32_t milliseconds);

    friend bool operator>(const TimeInfo& left, const TimeInfo& right) { return right < left; }
    friend bool operator<(const TimeInfo& left, const TimeInfo& right);
    friend bool operator<=(const TimeInfo& left, const TimeInfo& right) { return !(right < left); }
    friend bool operator==(const TimeInfo& left, const TimeInfo& right);

    bool IsInfinite() const { return m_seconds == -1 && m_nanoSeconds == -1; }
    void SetInfinite();  // a wait without limit
    // Both numbers 0.
    void Clear();

    std::int32_t GetSeconds() const { return m_seconds; }
    std::int32_t GetNanoSeconds() const { return m_nanoSeconds; }
    timespec GetTimespec() const;  // both numbers as they are

    void SetFormat(const StdString& format) { m_format = std::make_shared<const StdString>(format); }
    void SetDefaultFormat() { m_format.reset(); }

    // Local time by the format; empty if it is unknown. After the default format, and after any that ends in "%S",
    // follow "." and the first digits of the nanoseconds without leading zeros: 5 ms after the second reads .5000000.
    // The readers of existing logs rely on that form. 0 digits: no fraction; above 9: the whole number.
    StdString GetTimeString(unsigned digits) const;
    StdString GetTimeString() const { return GetTimeString(9); }

    // Serial day number of spreadsheets (day 0 is 1899-12-30), in UTC, to the second.
    double GetXcelTime() const;

private:
    const StdString& Format() const { return m_format == nullptr ? DefaultFormat() : *m_format; }

    // Null: the default format. Copies share it.
    std::shared_ptr<const StdString> m_format;
    std::int32_t m_seconds = 0;
    std::int32_t m_nanoSeconds = 0;
};
