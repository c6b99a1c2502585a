// A lock that is held across calls, perhaps from one thread to another, and may be destroyed while held. A mutex allows
// neither. A release by another holder is refused. Any thread.
#pragma once

#include "Frameworks/Threading/Mutex.h"

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
    Mutex m_guard;  // held for a few instructions at a time
    Condition m_released;
    const void* m_holder GUARDED_BY(m_guard) = nullptr;
    pthread_t m_thread GUARDED_BY(m_guard) = {};
};
