#include "Frameworks/Messaging/MessageBuffer.h"

#include <cerrno>

namespace {

constexpr long NanoSecondsPerSecond = 1000000000;

int WaitOn(sem_t& semaphore, const timespec* deadline) {
    const int result = deadline == nullptr ? sem_wait(&semaphore) : sem_timedwait(&semaphore, deadline);
    return result == 0 ? 0 : errno;
}

}  // namespace

MessageBuffer::MessageBuffer(const StdString& threadName) : m_name(threadName + "_MessageBuffer") {
    sem_init(&m_semaphore, 0, 0);
    sem_init(&m_bell, 0, 0);
}

MessageBuffer::~MessageBuffer() {
    sem_destroy(&m_bell);
    sem_destroy(&m_semaphore);
}

void MessageBuffer::PostMessage(std::unique_ptr<MessageBase> message) {
    const bool isAwaited = PushBack(std::move(message));
    sem_post(&m_semaphore);
    if (isAwaited) {
        sem_post(&m_bell);
    }
}

std::unique_ptr<MessageBase> MessageBuffer::WaitForMessage(std::int32_t timeOutMilliSeconds) {
    if (timeOutMilliSeconds == -1) {
        m_lastError = Wait(nullptr);
    } else {
        const timespec deadline = TimeInfo(static_cast<std::uint32_t>(timeOutMilliSeconds)).GetTimespec();
        m_lastError = deadline.tv_nsec < NanoSecondsPerSecond ? Wait(&deadline) : EINVAL;
    }
    return m_lastError == 0 ? PopFront() : nullptr;
}

// A thread that is asleep on a semaphore counts as a waiter until it has run again, and each post meanwhile costs a
// system call. So the owner sleeps on the bell, which only the first message of a burst rings.
int MessageBuffer::Wait(const timespec* deadline) {
    while (sem_trywait(&m_semaphore) != 0) {
        if (!BeginWaiting()) {
            return WaitOn(m_semaphore, deadline);  // the sender is about to post
        }
        if (const int error = WaitOn(m_bell, deadline)) {
            EndWaiting();  // a bell that is rung at this very moment wakes the owner once for nothing
            return error;
        }
    }
    return 0;
}
