// The messages of one queue, in order of arrival, without a limit. Any thread.
#pragma once

#include <deque>
#include <memory>

#include "Frameworks/Messaging/MessageBase.h"
#include "Frameworks/Threading/Mutex.h"

class MessageContainer {
public:
    MessageContainer() = default;
    MessageContainer(const MessageContainer&) = delete;
    MessageContainer& operator=(const MessageContainer&) = delete;
    virtual ~MessageContainer() = default;

    void PushBack(std::unique_ptr<MessageBase> message);  // the queue owns the message from now on
    std::unique_ptr<MessageBase> PopFront();              // null if the queue is empty

private:
    Mutex m_mutex;
    std::deque<std::unique_ptr<MessageBase>> m_messages GUARDED_BY(m_mutex);
};
