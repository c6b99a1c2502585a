// A lock that is held across calls, perhaps from one thread to another, and may be destroyed while held. A mutex allows
// neither, nor a release by who does not hold it; here that is refused. Any thread.
#pragma once

#include <pthread.h>

class HeldLock {
public:
    constexpr HeldLock() = default;
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;
    ~HeldLock() = default;

    // Waits while anyone holds it, the holder itself included.
    void Lock(const void* holder);
    // False, and nothing changes, while another holds it. Nothing to release is no failure.
    bool Unlock(const void* holder);
    // Whether this holder locked it on the calling thread.
    bool IsHeldHere(const void* holder);

private:
    pthread_mutex_t m_guard = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t m_released = PTHREAD_COND_INITIALIZER;
    const void* m_holder = nullptr;
    pthread_t m_thread{};
};
