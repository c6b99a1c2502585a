#include "Frameworks/Messaging/MessageContainer.h"

bool MessageContainer::BeginWaiting() {
    const MutexLock lock(m_mutex);
    m_isAwaited = m_taken.IsEmpty() && m_messages.IsEmpty();
    return m_isAwaited;
}

void MessageContainer::EndWaiting() {
    const MutexLock lock(m_mutex);
    m_isAwaited = false;
}
