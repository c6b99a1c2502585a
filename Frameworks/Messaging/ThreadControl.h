// A controller: a thread with a message queue, a state and a time-out. Any thread may call ReceiveMessage, Kill, Log
// and the getters; everything else runs on the controller's own thread. A Process operation that returns false ends the
// thread.
#pragma once

#include <atomic>
#include <memory>

#include "Frameworks/Messaging/CommandMessage.h"
#include "Frameworks/Messaging/DataMessage.h"
#include "Frameworks/Messaging/MessageBuffer.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Threading/ThreadBase.h"

class ThreadControl : public ThreadBase {
public:
    ThreadControl() = default;
    ~ThreadControl() override = default;

    std::int32_t Run() override;
    void Kill() override;
    std::int32_t Exit() override;
    bool Init() override;
    void SetState(ThreadState state) override;

    // Subscribes to data messages. Called from Init, on the controller's own thread.
    virtual bool DoRegistration() = 0;
    // Passes the current message to ProcessCommandMessage or ProcessDataMessage; false without one.
    virtual bool ProcessMessage();
    // Returns false only if the wait failed; any failure counts as a time-out.
    virtual bool WaitForMessage();
    // For the router only; false in any other controller.
    virtual bool RegisterCommand(ThreadControl* thread, CommandType command);
    virtual bool RegisterDataMessage(ThreadControl* thread, DataMessageType type);
    // The message is freed when they return. The default follows the four MOVE_TO commands; false for null.
    virtual bool ProcessCommandMessage(CommandMessage* message);
    virtual bool ProcessDataMessage(DataMessage* message) = 0;
    // After a silence of the time-out. The default logs it and returns true.
    virtual bool ProcessTimeOut();

    // Milliseconds of silence in the queue after which ProcessTimeOut runs; -1: never.
    void SetTimeOut(std::int32_t milliSeconds) { m_timeOut = milliSeconds; }
    std::int32_t GetTimeOut() const { return m_timeOut; }

    // Appends to this controller's queue, even before the thread has started.
    void ReceiveMessage(std::unique_ptr<MessageBase> message);
    void SendCommand(CommandType command);  // to every controller, through the router
    // Level -1 means the least severe level. Nothing is allocated for a level above the process-wide one.
    void Log(const StdString& text, LogLevel level) {
        if (IsLogged(level)) {
            SendLogLine(text, level);
        }
    }
    void Log(const char* text, LogLevel level) {
        if (IsLogged(level)) {
            SendLogLine(text, level);
        }
    }
    bool RegisterForCommand(CommandType command);  // always false
    bool RegisterForDataMessage(DataMessageType type);

protected:
    // How the Init of a controller begins: the log line, then ThreadControl::Init.
    bool InitController();
    void LogInitializing();
    // Enters the state that one of the four MOVE_TO commands asks for; false for any other command.
    bool FollowStateCommand(CommandType command);

private:
    static LogLevel Effective(LogLevel level) { return level == NO_LOG_LEVEL ? RUMOR_LOG_LEVEL : level; }
    static bool IsLogged(LogLevel level) { return MessageController::IsLogged(Effective(level)); }

    void SendLogLine(StdString text, LogLevel level);
    [[gnu::cold]] void LogReceipt(const MessageBase& message);
    MessageBuffer& Buffer() {
        MessageBuffer* buffer = m_buffer;
        return buffer == nullptr ? MakeBuffer() : *buffer;
    }
    MessageBuffer& MakeBuffer();
    bool DrainQueue();

    Mutex m_bufferMutex;  // creation of the buffer only
    std::unique_ptr<MessageBuffer> m_ownedBuffer GUARDED_BY(m_bufferMutex);
    std::atomic<MessageBuffer*> m_buffer{nullptr};
    std::int32_t m_timeOut = -1;
    std::unique_ptr<MessageBase> m_currentMessage;
};

// Waits for the end of a thread, if it was started. Only a negative result is logged: pthread_join reports errors as
// positive numbers, which have never been logged.
void JoinThread(const ThreadBase& thread, const char* failure, LogLevel level, ControllerType origin);

inline void ThreadControl::ReceiveMessage(std::unique_ptr<MessageBase> message) {
    if (IsLogged(DEBUG_LOG_LEVEL)) {
        LogReceipt(*message);
    }
    // Nothing would ever remove it, and the rest of the system may run for years.
    if (GetState() == POST_EXITING_STATE) {
        return;
    }
    Buffer().PostMessage(std::move(message));
}
