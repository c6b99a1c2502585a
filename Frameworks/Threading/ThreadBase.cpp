#include "Frameworks/Threading/ThreadBase.h"

#include <sched.h>

#include "Frameworks/Utilities/Report.h"

bool ThreadBase::Init() {
    m_maximumPriority = sched_get_priority_max(m_policy);
    return true;
}

bool ThreadBase::CreateThread() {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) {
        return false;
    }
    int policy = 0;
    pthread_attr_getschedpolicy(&attributes, &policy);
    m_policy = policy;
    pthread_t thread = 0;
    const int error = pthread_create(&thread, &attributes, ThreadEntry, this);
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        StdString number;
        number.FromInteger(error);
        ReportError("ThreadBase::CreateThread  Unable to create Thread with error code = " + number,
                    MEASUREMENT_ENGINE);
        return false;
    }
    m_threadId = thread;
    return true;
}

void ThreadBase::ReleaseThread() {
    if (m_threadId != 0) {
        pthread_detach(m_threadId);
    }
}

void ThreadBase::StartAs(const StdString& name) {
    SetThreadName(name);
    if (!CreateThread()) {
        ReleaseThread();
    }
}

void ThreadBase::SetPriority(std::int32_t priority) {
    m_currentPriority = priority == -1 ? m_maximumPriority : priority;
    pthread_setschedprio(m_threadId, m_currentPriority);
}

void* ThreadBase::ThreadEntry(void* thread) {
    auto* self = static_cast<ThreadBase*>(thread);
    // The creator stores the id too, but perhaps only after this thread has read it.
    self->m_threadId = pthread_self();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the result is passed as the thread's value
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(self->Run()));
}
