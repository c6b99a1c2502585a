// A POSIX mutex of default attributes, with the annotations by which clang proves who guards what.
#pragma once

#include <pthread.h>

// Clang's words for who guards what; nothing for other compilers.
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
#define RELEASE(...) THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define EXCLUDES(...) THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

class CAPABILITY("mutex") Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex() { pthread_mutex_destroy(&m_mutex); }

    void Lock() ACQUIRE() { pthread_mutex_lock(&m_mutex); }
    void Unlock() RELEASE() { pthread_mutex_unlock(&m_mutex); }

private:
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
