#include "Frameworks/Messaging/MessageBuffer.h"

#include <cerrno>

MessageBuffer::MessageBuffer(const StdString& threadName) : m_name(threadName + "_MessageBuffer") {
    sem_init(&m_semaphore, 0, 0);
}

MessageBuffer::~MessageBuffer() { sem_destroy(&m_semaphore); }

void MessageBuffer::PostMessage(std::unique_ptr<MessageBase> message) {
    PushBack(std::move(message));
    sem_post(&m_semaphore);
}

std::unique_ptr<MessageBase> MessageBuffer::WaitForMessage(std::int32_t timeOutMilliSeconds) {
    m_lastError = 0;
    int result = 0;
    if (timeOutMilliSeconds == -1) {
        result = sem_wait(&m_semaphore);
    } else {
        const timespec deadline = TimeInfo(static_cast<std::uint32_t>(timeOutMilliSeconds)).GetTimespec();
        result = sem_timedwait(&m_semaphore, &deadline);
    }
    if (result != 0) {
        m_lastError = errno;
        return nullptr;
    }
    return PopFront();
}
