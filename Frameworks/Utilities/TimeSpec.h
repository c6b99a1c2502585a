// Seconds and nanoseconds (0 to 999,999,999), which can sleep. One thread at a time.
#pragma once

#include <cstdint>

// For both types of time.
inline constexpr std::int32_t NanoSecondsPerSecond = 1000000000;

class TimeSpec {
public:
    TimeSpec();  // now, with retry
    TimeSpec(std::int32_t seconds, std::int32_t nanoSeconds);
    TimeSpec(const TimeSpec&) = default;
    TimeSpec& operator=(const TimeSpec&) = default;
    virtual ~TimeSpec() = default;

    virtual bool GetRetry() const { return m_retry; }
    virtual void SetRetryOn() { m_retry = true; }
    virtual void SetTenthMilliSeconds(std::uint32_t tenths);  // of the low 16 bits
    virtual void SetNanoSeconds(std::int32_t nanoSeconds);    // limited to 0 to 999,999,999
    virtual void SetSeconds(std::int32_t seconds) { m_seconds = seconds; }
    virtual void SetRetryOff() { m_retry = false; }

    std::int32_t GetSeconds() const { return m_seconds; }
    std::int32_t GetNanoSeconds() const { return m_nanoSeconds; }

    bool GetTime();  // CLOCK_REALTIME; false if it can't be read

    // A nanosecond count above 999,999,999 is ignored, and so is a sum that reaches a second: no caller needs the
    // carry.
    TimeSpec& operator+=(const TimeSpec& other);
    TimeSpec& operator+=(std::uint32_t nanoSeconds);
    TimeSpec& operator-=(const TimeSpec& other);
    TimeSpec& operator-=(std::uint32_t nanoSeconds);  // borrows a second if necessary

    friend bool operator<(const TimeSpec& left, const TimeSpec& right);
    friend bool operator>(const TimeSpec& left, const TimeSpec& right) { return right < left; }
    // Compare with nanoseconds, or with tenths of milliseconds.
    bool IsBelowNanoSeconds(std::int64_t nanoSeconds) const;
    bool IsAboveNanoSeconds(std::int64_t nanoSeconds) const;
    bool IsBelowTenthMilliSeconds(std::uint32_t tenths) const;
    bool IsAboveTenthMilliSeconds(std::uint32_t tenths) const;

    // nanosleep; if interrupted and with retry, again for the remainder. Only a request with both fields above zero
    // sleeps; any other returns false immediately.
    static bool Sleep(const TimeSpec* request, TimeSpec* remainder, bool retry);

private:
    bool m_retry = true;
    std::int32_t m_seconds = 0;
    std::int32_t m_nanoSeconds = 0;
};
