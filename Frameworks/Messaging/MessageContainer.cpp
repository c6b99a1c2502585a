#include "Frameworks/Messaging/MessageContainer.h"

#include <utility>

void MessageContainer::PushBack(std::unique_ptr<MessageBase> message) {
    const MutexLock lock(m_mutex);
    m_messages.push_back(std::move(message));
}

std::unique_ptr<MessageBase> MessageContainer::PopFront() {
    const MutexLock lock(m_mutex);
    if (m_messages.empty()) {
        return nullptr;
    }
    std::unique_ptr<MessageBase> message = std::move(m_messages.front());
    m_messages.pop_front();
    return message;
}
