// One line for the system log.
#pragma once

#include "Frameworks/Utilities/Enumerations.h"
#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class LogInfo : public XMLData {
public:
    LogInfo() = default;
    LogInfo(StdString text, LogLevel level, const TimeInfo& time)
        : m_text(std::move(text)), m_level(level), m_time(time) {}

    const StdString& GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }
    LogLevel GetLogLevel() const { return m_level; }
    void SetLogLevel(LogLevel level) { m_level = level; }
    const TimeInfo& GetTime() const { return m_time; }
    void SetTime(const TimeInfo& time) { m_time = time; }

    // The time with nine digits, " :: " and the text.
    StdString GetLine() const { return m_time.GetTimeString(9) + " :: " + m_text; }

private:
    StdString m_text;
    LogLevel m_level = EMERGENCY_LOG_LEVEL;
    TimeInfo m_time;
};
