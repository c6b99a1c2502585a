// The way to the router for code that isn't a controller, in the name of one. Any thread.
#pragma once

#include "Frameworks/Messaging/MessageBase.h"

class MessageController {
public:
    virtual ~MessageController() = default;

    // Dropped before anything is allocated where the level is above the process-wide one.
    static void LogMessage(const StdString& text, LogLevel level, ControllerType origin);

    // False, with a line in the log, for a null message and for no origin; else true, also where there is no router and
    // the message was freed.
    static bool SendMessage(std::unique_ptr<MessageBase> message, ControllerType origin);

    // A line of progress in the name of MeasurementEngine.
    static bool SendStatusMessage(const StdString& text);

    // The process-wide log level: 8 at start, set by LoggingControl.
    static std::int32_t GetLogLevel();
    static void SetLogLevel(std::int32_t level);
};
