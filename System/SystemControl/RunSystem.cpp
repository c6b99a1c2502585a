#include "System/SystemControl/RunSystem.h"

#include <unistd.h>

#include "Frameworks/Messaging/CommandMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/SystemControl/SystemControl.h"

namespace {

constexpr unsigned SecondsBeforeReset = 15;

void Join(const SystemControl& system, const char* failure) {
    JoinThread(system, failure, EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
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
