// Sets the time zone of this process during its life. POSIX form: "MST7", "EAST-3".
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* previous = std::getenv("TZ")) {
            m_previous = previous;
        }
        setenv("TZ", zone, 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        if (m_previous) {
            setenv("TZ", m_previous->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

private:
    std::optional<std::string> m_previous;
};
