// A thread as an object: a subclass implements Run; its creator calls CreateThread, later joins GetThreadId and deletes
// the object. Kill, SetState and the getters may be called from any thread; Run, Init and Exit run on the thread
// itself.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "Frameworks/Utilities/Enumerations.h"

class ThreadBase {
public:
    ThreadBase() = default;
    ThreadBase(const ThreadBase&) = delete;
    ThreadBase& operator=(const ThreadBase&) = delete;
    virtual ~ThreadBase() = default;

    // The thread's body; its result is the thread's value.
    virtual std::int32_t Run() = 0;
    // Asks the thread to end and does not wait for it.
    virtual void Kill() = 0;
    virtual std::int32_t Exit() { return 0; }
    // The first step of the thread: false ends it. SetState may be called from any thread.
    virtual bool Init();
    virtual void SetState(ThreadState state) { m_state = state; }

    // Starts a thread with default attributes. False, with a line in the log, if the system refuses it.
    bool CreateThread();
    void ReleaseThread();  // detaches the thread, if there is one
    // Names the thread and starts it: the last call of a constructor. A failure is logged and leaves the id at 0.
    void StartAs(const StdString& name);

    StdString GetThreadName() const { return m_threadName; }
    const StdString& ThreadName() const { return m_threadName; }        // valid as long as this object
    void SetThreadName(const StdString& name) { m_threadName = name; }  // before CreateThread only
    ThreadState GetState() const { return m_state; }
    pthread_t GetThreadId() const { return m_threadId; }  // 0 until CreateThread has succeeded

    // -1 means the policy's maximum; any other value is passed on unchanged.
    void SetPriority(std::int32_t priority);

protected:
    void ClearThreadId() { m_threadId = 0; }  // once the thread is joined

private:
    static void* ThreadEntry(void* thread);

    std::int32_t m_maximumPriority = 0;
    StdString m_threadName;
    std::int32_t m_currentPriority = 0;
    std::atomic<ThreadState> m_state{INITIALIZING_STATE};
    std::atomic<pthread_t> m_threadId{0};
    std::atomic<int> m_policy{0};
};
