#include "Drivers/HeldLock.h"

void HeldLock::Lock(const void* holder) {
    const MutexLock guard(m_guard);
    while (m_holder != nullptr) {
        m_released.Wait(m_guard);
    }
    m_holder = holder;
    m_thread = pthread_self();
}

bool HeldLock::Unlock(const void* holder) {
    const MutexLock guard(m_guard);
    if (m_holder != nullptr && m_holder != holder) {
        return false;
    }
    m_holder = nullptr;
    m_released.NotifyAll();
    return true;
}

bool HeldLock::IsHeldHere(const void* holder) {
    const MutexLock guard(m_guard);
    return m_holder == holder && pthread_equal(m_thread, pthread_self()) != 0;
}
