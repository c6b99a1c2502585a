// The one form of lock: a Mutex, a MutexLock that holds it for a block, and a Condition to wait for a change of what it
// guards. Each guarded member has GUARDED_BY beside it, and clang's -Wthread-safety checks every access. Mutex and
// Condition are initialized before any code runs and are never destroyed, so that static ones are safe until the
// process ends; POSIX asks for pthread_*_destroy, but for these forms it frees nothing.
#pragma once

#include <pthread.h>

#include <chrono>

// The annotations are clang's; other compilers see nothing.
#if defined(__clang__)
#define THREAD_ANNOTATION(x) __attribute__((x))
#else
#define THREAD_ANNOTATION(x)
#endif
#define CAPABILITY(x) THREAD_ANNOTATION(capability(x))
#define SCOPED_CAPABILITY THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(x) THREAD_ANNOTATION(guarded_by(x))
#define REQUIRES(...) THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define EXCLUDES(...) THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

// A POSIX mutex of default attributes.
class CAPABILITY("mutex") Mutex {
public:
    constexpr Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex() = default;

    // Only for an owner that reports a mutex that could not be made; call it before the first Lock.
    bool Initialize() { return pthread_mutex_init(&m_mutex, nullptr) == 0; }
    void Lock() ACQUIRE() { pthread_mutex_lock(&m_mutex); }
    void Unlock() RELEASE() { pthread_mutex_unlock(&m_mutex); }

private:
    friend class Condition;

    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

// Holds a mutex for the length of a block.
class SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() RELEASE() { m_mutex.Unlock(); }

private:
    Mutex& m_mutex;
};

// A wait can end without a notification: call it in a loop over what is waited for. Notify under the lock, and destroy
// the condition only when no thread waits.
class Condition {
public:
    constexpr Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;
    ~Condition() = default;

    void Wait(Mutex& mutex) REQUIRES(mutex) { pthread_cond_wait(&m_condition, &mutex.m_mutex); }
    // False once the deadline has passed.
    bool WaitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline) REQUIRES(mutex);
    void NotifyAll() { pthread_cond_broadcast(&m_condition); }

private:
    pthread_cond_t m_condition = PTHREAD_COND_INITIALIZER;
};
