// The router of a test: known to the process from construction to End, which the destructor calls.
#pragma once

#include <pthread.h>

#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"

class TestRouter {
public:
    // The log level is that of the process from before the first line of the router until this is destroyed.
    explicit TestRouter(LogLevel level) : m_level(level) { MessageBase::SetMessagingControl(&m_control); }
    TestRouter() : TestRouter(NO_LOG_LEVEL) {}  // leaves the level
    ~TestRouter() { End(); }
    TestRouter(const TestRouter&) = delete;
    TestRouter& operator=(const TestRouter&) = delete;

    // Ends the thread. The router delivers to its subscribers until then, so delete them after it.
    void End() {
        if (m_isRunning) {
            m_isRunning = false;
            MessageBase::SetMessagingControl(nullptr);
            m_control.Kill();
            pthread_join(m_control.GetThreadId(), nullptr);
        }
    }

    MessagingControl& operator*() { return m_control; }
    MessagingControl* operator->() { return &m_control; }

    // Enters a name into the router's table.
    void AddName(ThreadControl& thread) { m_control.RegisterCommand(&thread, KILLING_SYSTEM); }

private:
    class ProcessLogLevel {
    public:
        explicit ProcessLogLevel(LogLevel level) : m_isSet(level != NO_LOG_LEVEL) {
            if (m_isSet) {
                MessageController::SetLogLevel(level);
            }
        }
        ~ProcessLogLevel() {
            if (m_isSet) {
                MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
            }
        }
        ProcessLogLevel(const ProcessLogLevel&) = delete;
        ProcessLogLevel& operator=(const ProcessLogLevel&) = delete;

    private:
        const bool m_isSet;
    };

    const ProcessLogLevel m_level;
    MessagingControl m_control;
    bool m_isRunning = true;
};

// Represents a controller that is not there. Its thread never runs.
class AbsentController final : public ThreadControl {
public:
    explicit AbsentController(ControllerType type) { SetThreadName(ControllerNames[type]); }
    bool DoRegistration() override { return true; }
    bool ProcessDataMessage(DataMessage* /*message*/) override { return true; }
};
