// The messages of one queue, in order of arrival, without a limit. Any thread adds; one thread, the owner, takes.
#pragma once

#include <atomic>

#include "Frameworks/Messaging/MessageList.h"
#include "Frameworks/Threading/Mutex.h"

class MessageContainer {
public:
    MessageContainer() = default;
    MessageContainer(const MessageContainer&) = delete;
    MessageContainer& operator=(const MessageContainer&) = delete;
    virtual ~MessageContainer() = default;

    // The message belongs to the queue from now on. True where it ends the waiting of the owner.
    bool PushBack(std::unique_ptr<MessageBase> message);
    std::unique_ptr<MessageBase> PopFront();  // null when empty

protected:
    // The owner of the queue waits for the next message. False, and it does not, where one stands there already.
    bool BeginWaiting();
    void EndWaiting();

private:
    bool TakeBurst();

    Mutex m_mutex;
    MessageList m_messages GUARDED_BY(m_mutex);
    bool m_isAwaited GUARDED_BY(m_mutex) = false;
    std::atomic<bool> m_hasMore{false};  // m_messages holds something

    MessageList m_taken;  // the owner's alone: a burst, taken under one lock, that came before m_messages
};

inline bool MessageContainer::PushBack(std::unique_ptr<MessageBase> message) {
    const MutexLock lock(m_mutex);
    m_messages.PushBack(std::move(message));
    m_hasMore.store(true, std::memory_order_relaxed);
    return std::exchange(m_isAwaited, false);
}

inline std::unique_ptr<MessageBase> MessageContainer::PopFront() {
    const bool isThere = !m_taken.IsEmpty() || (m_hasMore.load(std::memory_order_relaxed) && TakeBurst());
    if (!isThere) {
        return nullptr;
    }
    return m_taken.PopFront();
}
