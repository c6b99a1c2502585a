#include "Frameworks/Messaging/MessageContainer.h"

bool MessageContainer::TakeBurst() {
    const MutexLock lock(m_mutex);
    m_hasMore.store(false, std::memory_order_relaxed);
    m_taken.Take(m_messages);
    return !m_taken.IsEmpty();
}

bool MessageContainer::BeginWaiting() {
    const MutexLock lock(m_mutex);
    m_isAwaited = m_taken.IsEmpty() && m_messages.IsEmpty();
    return m_isAwaited;
}

void MessageContainer::EndWaiting() {
    const MutexLock lock(m_mutex);
    m_isAwaited = false;
}
