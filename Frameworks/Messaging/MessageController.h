// Sends messages to the router for code that is not a controller, in the name of one. Any thread.
#pragma once

#include <atomic>

#include "Frameworks/Messaging/MessageBase.h"

class MessageController {
public:
    virtual ~MessageController() = default;

    // Drops the line before anything is allocated if its level is above the process-wide one.
    static void LogMessage(const StdString& text, LogLevel level, ControllerType origin) {
        if (IsLogged(level)) {
            SendLogLine(text, level, origin);
        }
    }
    static void LogMessage(const char* text, LogLevel level, ControllerType origin) {
        if (IsLogged(level)) {
            SendLogLine(text, level, origin);
        }
    }
    // For callers that compose a text only if it will be logged.
    static bool IsLogged(std::int32_t level) { return level <= GetLogLevel(); }

    // False, with a line in the log, for a null message or without an origin. Otherwise true, even if there is no
    // router and the message was freed.
    static bool SendMessage(std::unique_ptr<MessageBase> message, ControllerType origin);

    // A line of progress in the name of MeasurementEngine.
    static bool SendStatusMessage(const StdString& text);

    // The process-wide log level: 8 at start, set by LoggingControl.
    static std::int32_t GetLogLevel() { return s_logLevel.load(std::memory_order_relaxed); }
    static void SetLogLevel(std::int32_t level) { s_logLevel = level; }

private:
    static void SendLogLine(StdString text, LogLevel level, ControllerType origin);

    static inline std::atomic<std::int32_t> s_logLevel{RUMOR_LOG_LEVEL};
};
