// How the sockets log: in the name of the test interface, also where the front end's link is the user. Any thread.
#pragma once

#include "Frameworks/Messaging/MessageController.h"

inline void LogNetworkError(const StdString& text) {
    MessageController::LogMessage(text, ERROR_LOG_LEVEL, TEST_INTERFACE);
}
