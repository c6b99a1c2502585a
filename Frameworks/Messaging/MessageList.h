// Messages in a row, each of which owns the next. One thread at a time.
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
        MessageBase* last = message.get();
        (IsEmpty() ? m_first : m_last->m_next) = std::move(message);
        m_last = last;
    }

    std::unique_ptr<MessageBase> PopFront() {  // not of an empty list
        std::unique_ptr<MessageBase> message = std::move(m_first);
        m_first = std::move(message->m_next);
        return message;
    }

    // Everything that the other holds, in the place of what stood here.
    void Take(MessageList& other) {
        Clear();
        m_first = std::move(other.m_first);
        m_last = other.m_last;
    }

private:
    void Clear() {  // one by one: a chain that frees itself would need a stack as long
        while (!IsEmpty()) {
            PopFront();
        }
    }

    std::unique_ptr<MessageBase> m_first;
    MessageBase* m_last = nullptr;  // of a list that is not empty
};
