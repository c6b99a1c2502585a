// How the parts of the measurement engine log a failure. Any thread.
#pragma once

#include "Frameworks/Messaging/MessageController.h"

inline void LogError(const char* text) { MessageController::LogMessage(text, ERROR_LOG_LEVEL, MEASUREMENT_ENGINE); }
