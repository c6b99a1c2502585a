// The time zone of this process while one of these lives; then the former one again. POSIX form: "MST7", "EAST-3".
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* former = std::getenv("TZ")) {
            m_former = former;
        }
        setenv("TZ", zone, 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        if (m_former) {
            setenv("TZ", m_former->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

private:
    std::optional<std::string> m_former;
};
