// How the classes below the message layer log an error. MessageController sets the function, so that time, threads and
// drivers log without knowing messages. Any thread.
#pragma once

#include "Frameworks/Utilities/Enumerations.h"

using ReportFunction = void (*)(const StdString& text, LogLevel level, ControllerType origin);

// Call once, before main.
void SetReportFunction(ReportFunction function);

// Logs the text at the error level; without a function the text is dropped. Returns false, so that a failed operation
// can return the call.
bool ReportError(const StdString& text, ControllerType origin);
