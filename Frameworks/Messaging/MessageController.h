// The way to the router for code that isn't a controller, in the name of one. Any thread.
#pragma once

#include <atomic>

#include "Frameworks/Messaging/MessageBase.h"

class MessageController {
public:
    virtual ~MessageController() = default;

    // Dropped before anything is allocated where the level is above the process-wide one.
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
    // For those who put a text together only where it is wanted.
    static bool IsLogged(std::int32_t level) { return level <= GetLogLevel(); }

    // False, with a line in the log, for a null message and for no origin; else true, also where there is no router and
    // the message was freed.
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
