// A line for the system log on its way to LoggingControl.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"
#include "Frameworks/Messaging/LogInfo.h"

class LogInfoMessage : public DataMessageOf<LogInfoMessage, LOGGING_DATA_MESSAGE> {
public:
    LogInfoMessage() = default;
    LogInfoMessage(StdString text, LogLevel level);  // with the time stamp of the message

    const LogInfo& GetLogInfo() const { return m_logInfo; }
    void SetLogInfo(const LogInfo& logInfo) { m_logInfo = logInfo; }
    void SetLogInfo(const StdString& text, LogLevel level);  // with a fresh time

private:
    LogInfo m_logInfo;
};
