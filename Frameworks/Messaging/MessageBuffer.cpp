#include "Frameworks/Messaging/MessageBuffer.h"

#include <cerrno>
#include <utility>

#include "Frameworks/Utilities/TimeSpec.h"

namespace {

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
    PushBack(std::move(message));
    sem_post(&m_semaphore);
    if (m_isAsleep.exchange(false)) {
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

int MessageBuffer::Wait(const timespec* deadline) {
    int error = 0;
    while (error == 0 && sem_trywait(&m_semaphore) != 0) {
        m_isAsleep.exchange(true);
        if (sem_trywait(&m_semaphore) == 0) {
            break;
        }
        error = WaitOn(m_bell, deadline);
    }
    m_isAsleep.exchange(false);
    return error;
}
