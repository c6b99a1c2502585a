// The blocking queue of one controller: any thread posts, the controller's own thread waits and takes.
#pragma once

#include <semaphore.h>

#include "Frameworks/Messaging/MessageContainer.h"
#include "Frameworks/Utilities/StdString.h"

class MessageBuffer : public MessageContainer {
public:
    explicit MessageBuffer(const StdString& threadName);
    ~MessageBuffer() override;

    // Never waits: the queue has no limit.
    void PostMessage(std::unique_ptr<MessageBase> message);

    // The front message, or null. -1 waits without limit. Null with GetLastError 0: the semaphore was ahead of the
    // queue, whose owner had already taken what was posted. Null with an error: nothing came within the time-out; a
    // time-out that is no whole number of seconds may end at once, because the nanoseconds of the deadline carry into
    // no second (EINVAL).
    std::unique_ptr<MessageBase> WaitForMessage(std::int32_t timeOutMilliSeconds);

    int GetLastError() const { return m_lastError; }
    const StdString& GetName() const { return m_name; }

private:
    // Null: no limit; the result is an errno, or 0.
    int Wait(const timespec* deadline) { return sem_trywait(&m_semaphore) == 0 ? 0 : Sleep(deadline); }
    int WaitFor(std::int32_t milliSeconds);
    int Sleep(const timespec* deadline);

    sem_t m_semaphore{};  // counts what was posted
    sem_t m_bell{};       // rung once for an owner that sleeps
    StdString m_name;
    int m_lastError = 0;
};

inline void MessageBuffer::PostMessage(std::unique_ptr<MessageBase> message) {
    const bool isAwaited = PushBack(std::move(message));
    sem_post(&m_semaphore);
    if (isAwaited) {
        sem_post(&m_bell);
    }
}

inline std::unique_ptr<MessageBase> MessageBuffer::WaitForMessage(std::int32_t timeOutMilliSeconds) {
    m_lastError = timeOutMilliSeconds == -1 ? Wait(nullptr) : WaitFor(timeOutMilliSeconds);
    return m_lastError == 0 ? PopFront() : nullptr;
}
