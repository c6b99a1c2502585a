#include "Drivers/HeldLock.h"

namespace {

// Held for a few instructions at a time and by one thread, so locking it does not fail.
class Guard {
public:
    explicit Guard(pthread_mutex_t& mutex) : m_mutex(mutex) { pthread_mutex_lock(&m_mutex); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() { pthread_mutex_unlock(&m_mutex); }

private:
    pthread_mutex_t& m_mutex;
};

}  // namespace

void HeldLock::Lock(const void* holder) {
    const Guard guard(m_guard);
    while (m_holder != nullptr) {
        pthread_cond_wait(&m_released, &m_guard);
    }
    m_holder = holder;
    m_thread = pthread_self();
}

bool HeldLock::Unlock(const void* holder) {
    const Guard guard(m_guard);
    if (m_holder != nullptr && m_holder != holder) {
        return false;
    }
    m_holder = nullptr;
    pthread_cond_signal(&m_released);
    return true;
}

bool HeldLock::IsHeldHere(const void* holder) {
    const Guard guard(m_guard);
    return m_holder == holder && pthread_equal(m_thread, pthread_self()) != 0;
}
