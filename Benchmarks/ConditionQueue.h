// The usual alternative to our queue: messages on the heap in a deque, with a mutex and a condition variable.
#pragma once

#include <condition_variable>
#include <ctime>
#include <deque>
#include <memory>
#include <mutex>

#include "Frameworks/Messaging/CommandMessage.h"

// As large as our command, and with a time stamp as our messages have.
class PeerMessage {
public:
    explicit PeerMessage(int command) : m_command(command) { clock_gettime(CLOCK_REALTIME, &m_time); }
    PeerMessage(const PeerMessage&) = default;
    PeerMessage& operator=(const PeerMessage&) = default;
    virtual ~PeerMessage() = default;

    int GetCommand() const { return m_command; }

private:
    static constexpr std::size_t Rest = sizeof(CommandMessage) - sizeof(void*) - sizeof(long) - sizeof(timespec);

    int m_command;
    timespec m_time{};
    char m_rest[Rest];  // the other members of ours
};

static_assert(sizeof(PeerMessage) == sizeof(CommandMessage));

class ConditionQueue {
public:
    void Post(std::unique_ptr<PeerMessage> message) {
        {
            const std::lock_guard lock(m_mutex);
            m_messages.push_back(std::move(message));
        }
        m_changed.notify_one();
    }

    std::unique_ptr<PeerMessage> Take() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_messages.empty(); });
        std::unique_ptr<PeerMessage> message = std::move(m_messages.front());
        m_messages.pop_front();
        return message;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<PeerMessage>> m_messages;
};
