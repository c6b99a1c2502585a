#include "Frameworks/Messaging/LogInfoMessage.h"

LogInfoMessage::LogInfoMessage(StdString text, LogLevel level) : m_logInfo(std::move(text), level, GetTimeStamp()) {}

void LogInfoMessage::SetLogInfo(const StdString& text, LogLevel level) {
    m_logInfo.SetText(text);
    m_logInfo.SetLogLevel(level);
    m_logInfo.SetTime(TimeInfo());
}
