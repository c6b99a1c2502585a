#include "Frameworks/Messaging/MessageBuffer.h"

#include <cerrno>

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

int MessageBuffer::WaitFor(std::int32_t milliSeconds) {
    const timespec deadline = TimeInfo(static_cast<std::uint32_t>(milliSeconds)).GetTimespec();
    return deadline.tv_nsec < NanoSecondsPerSecond ? Wait(&deadline) : EINVAL;
}

// A thread that is asleep on a semaphore counts as a waiter until it has run again, and each post meanwhile costs a
// system call. So the owner sleeps on the bell, which only the first message of a burst rings.
int MessageBuffer::Sleep(const timespec* deadline) {
    do {
        if (!BeginWaiting()) {
            return WaitOn(m_semaphore, deadline);  // the sender is about to post
        }
        if (const int error = WaitOn(m_bell, deadline)) {
            EndWaiting();  // a bell that is rung at this very moment wakes the owner once for nothing
            return error;
        }
    } while (sem_trywait(&m_semaphore) != 0);
    return 0;
}
