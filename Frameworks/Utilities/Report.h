// Where the classes below the message layer report an error. MessageController fills the hook, so that time, threads
// and drivers can log without knowing messages. Any thread.
#pragma once

#include "Frameworks/Utilities/Enumerations.h"

using ReportFunction = void (*)(const StdString& text, LogLevel level, ControllerType origin);

// Once, before main.
void SetReportFunction(ReportFunction function);

// Without a function set the text is dropped.
void Report(const StdString& text, LogLevel level, ControllerType origin);
