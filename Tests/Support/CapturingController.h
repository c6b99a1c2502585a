// A controller that keeps a copy of each data message that it receives. The constructor starts it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Messaging/ThreadControl.h"
#include "Tests/Support/TestRouter.h"

class CapturingController final : public ThreadControl {
public:
    explicit CapturingController(const StdString& name, std::vector<DataMessageType> types = {})
        : m_types(std::move(types)) {
        SetThreadName(name);
        EXPECT_TRUE(CreateThread());
        // A command from the controller to itself comes back only after it has registered.
        auto ready = std::make_unique<CommandMessage>(MOVE_TO_IDLE);
        ready->SetSource(this);
        ready->SetDestination(this);
        MessageBase::Send(std::move(ready));
        EXPECT_TRUE(WaitFor([this] { return m_ready; }));
    }
    CapturingController(const CapturingController&) = delete;
    CapturingController& operator=(const CapturingController&) = delete;
    ~CapturingController() override {
        Kill();
        pthread_join(GetThreadId(), nullptr);
    }

    bool Init() override { return ThreadControl::Init() && DoRegistration(); }

    bool DoRegistration() override {
        RegisterForCommand(MOVE_TO_IDLE);  // enters the name
        for (const DataMessageType type : m_types) {
            EXPECT_TRUE(RegisterForDataMessage(type));
        }
        return true;
    }

    bool ProcessCommandMessage(CommandMessage* message) override {
        const std::lock_guard lock(m_mutex);
        m_ready = true;
        m_command = message->Clone();
        m_changed.notify_all();
        return true;
    }

    bool ProcessDataMessage(DataMessage* message) override {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(message->Clone());
        m_changed.notify_all();
        return true;
    }

    // Waits for the message at that position, from 0; the deadline only ends a hang.
    template <typename Message>
    const Message& Get(std::size_t position = 0) {
        EXPECT_TRUE(WaitFor([this, position] { return m_messages.size() > position; }));
        const std::lock_guard lock(m_mutex);
        return static_cast<const Message&>(*m_messages.at(position));
    }

    // Waits until that many messages of the type meet the condition.
    template <typename Message, typename Question>
    void WaitForSuch(DataMessageType type, Question question, std::size_t count = 1) {
        EXPECT_TRUE(WaitFor([&] {
            std::size_t such = 0;
            for (const auto& message : m_messages) {
                such += IsOf(*message, type) && question(static_cast<const Message&>(*message)) ? 1U : 0U;
            }
            return such >= count;
        }));
    }

    // All of the type so far, in order of arrival.
    template <typename Message>
    std::vector<Message> Copies(DataMessageType type) {
        const std::lock_guard lock(m_mutex);
        std::vector<Message> copies;
        for (const auto& message : m_messages) {
            if (IsOf(*message, type)) {
                copies.push_back(static_cast<const Message&>(*message));
            }
        }
        return copies;
    }

    // The command as the router delivers it.
    std::unique_ptr<CommandMessage> Routed(CommandType type) {
        RegisterForCommand(type);
        {
            const std::lock_guard lock(m_mutex);
            m_command.reset();
        }
        SendCommand(type);
        EXPECT_TRUE(WaitFor([this] { return m_command != nullptr; }));
        const std::lock_guard lock(m_mutex);
        return std::make_unique<CommandMessage>(static_cast<const CommandMessage&>(*m_command));
    }

    std::size_t Count() {
        const std::lock_guard lock(m_mutex);
        return m_messages.size();
    }

private:
    static bool IsOf(const MessageBase& message, DataMessageType type) {
        return static_cast<const DataMessage&>(message).GetDataType() == type;
    }

    // Long, because the clock of a board may run fast.
    template <typename Condition>
    bool WaitFor(Condition condition) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::hours(1), condition);
    }

    const std::vector<DataMessageType> m_types;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ready = false;
    std::unique_ptr<MessageBase> m_command;
    std::vector<std::unique_ptr<MessageBase>> m_messages;
};

// A router for the length of a test.
class RoutedTest : public testing::Test {
    TestRouter m_router;

protected:
    MessagingControl& router = *m_router;
};
