// The blocking queue of one controller: any thread posts, the controller's own thread waits and takes.
#pragma once

#include <semaphore.h>

#include <atomic>

#include "Frameworks/Messaging/MessageContainer.h"
#include "Frameworks/Utilities/StdString.h"

class MessageBuffer : public MessageContainer {
public:
    explicit MessageBuffer(const StdString& threadName);
    ~MessageBuffer() override;

    // Never waits: the queue has no limit.
    void PostMessage(std::unique_ptr<MessageBase> message);

    // The front message, or null. -1 waits without limit. Null with GetLastError 0: the semaphore was ahead of the
    // queue, because PopFront takes a message without its count. Null with an error: nothing came within the time-out.
    // A time-out that is not a whole number of seconds may end at once with EINVAL, because the nanoseconds of the
    // deadline do not carry into the seconds.
    std::unique_ptr<MessageBase> WaitForMessage(std::int32_t timeOutMilliSeconds);

    int GetLastError() const { return m_lastError; }
    const StdString& GetName() const { return m_name; }

private:
    int Wait(const timespec* deadline);  // null: no limit; the result is 0 or an errno

    // The owner sleeps on a second semaphore. A thread that sleeps on a semaphore counts as its waiter from its call of
    // sem_wait until it runs again. A sender that posts a burst in this time makes a system call for each message to
    // wake the same thread. So only the first message of a burst posts m_bell; the rest finds m_isAsleep false.
    // With m_semaphore alone a burst passes at less than half the rate ("message through a queue, one way" of
    // the comparison with other libraries: 0.45 of a condition variable's rate in place of 0.77).
    // m_isAsleep is changed by exchange alone: the owner's exchange then sees the post of every sender whose exchange
    // came before, and every later sender sees the owner's. A bell that is posted although the owner found the message
    // by itself wakes it once more, for nothing.
    sem_t m_semaphore{};  // counts posted messages
    sem_t m_bell{};
    std::atomic<bool> m_isAsleep{false};
    StdString m_name;
    int m_lastError = 0;
};
