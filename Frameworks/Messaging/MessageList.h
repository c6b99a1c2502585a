// Messages in a row, which it owns. One thread at a time.
#pragma once

#include <memory>
#include <utility>

#include "Frameworks/Messaging/MessageBase.h"

class MessageList {
public:
    MessageList() = default;
    MessageList(const MessageList&) = delete;
    MessageList& operator=(const MessageList&) = delete;
    ~MessageList() { Clear(); }

    bool IsEmpty() const { return m_first == nullptr; }

    void PushBack(std::unique_ptr<MessageBase> message) {  // which belongs to the list from now on
        MessageBase* last = message.release();
        (IsEmpty() ? m_first : m_last->m_next) = last;
        m_last = last;
    }

    std::unique_ptr<MessageBase> PopFront() {  // not of an empty list
        std::unique_ptr<MessageBase> message(m_first);
        m_first = std::exchange(message->m_next, nullptr);
        return message;
    }

    // Everything that the other holds, in the place of what stood here.
    void Take(MessageList& other) {
        Clear();
        m_first = std::exchange(other.m_first, nullptr);
        m_last = other.m_last;
    }

private:
    void Clear() {
        while (!IsEmpty()) {
            PopFront();
        }
    }

    MessageBase* m_first = nullptr;
    MessageBase* m_last = nullptr;  // of a list that is not empty
};
