#include "System/SystemControl/RunSystem.h"

#include <pthread.h>
#include <unistd.h>

#include "Frameworks/Messaging/CommandMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/SystemControl/SystemControl.h"

namespace {

constexpr unsigned SecondsBeforeReset = 15;

// pthread_join tells an error by a positive number, so only a negative one is ever reported. A SystemControl whose
// thread could not be created has nothing to join.
void Join(const SystemControl& system, const char* failure) {
    const pthread_t thread = system.GetThreadId();
    // NOLINTNEXTLINE(bugprone-posix-return)
    if (thread != 0 && pthread_join(thread, nullptr) < 0) {
        MessageController::LogMessage(failure, EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
    }
}

void RunGeneration() {
    const SystemControl system;
    try {
        Join(system, "Main::  Error within pthread_join");
    } catch (...) {
        MessageController::LogMessage("Main::  System Caught Exception", EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        sleep(SecondsBeforeReset);
        MessageController::SendMessage(std::make_unique<CommandMessage>(RESET_SYSTEM), SYSTEM_CONTROL);
        Join(system, "Main::  Error within pthread_join within exception handling");
    }
}

}  // namespace

std::int32_t RunSystem() {
    try {
        while (true) {
            RunGeneration();
        }
    } catch (...) {
        return -1;
    }
}
