#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "Tests/Frameworks/Messaging/RecordingController.h"

namespace {

using Notes = std::vector<std::string>;

std::unique_ptr<CommandMessage> Command(CommandType type, ThreadControl* source, ThreadControl* destination) {
    auto message = std::make_unique<CommandMessage>(type);
    message->SetSource(source);
    message->SetDestination(destination);
    return message;
}

void Join(const ThreadBase& thread) { EXPECT_EQ(pthread_join(thread.GetThreadId(), nullptr), 0); }

// A thread that the test ends itself.
class EndingController : public RecordingController {
public:
    using RecordingController::RecordingController;
    void JoinAndForget() {
        Join(*this);
        ClearThreadId();
    }
};

// Records when it is freed.
class FreedMessage : public CommandMessage {
public:
    explicit FreedMessage(bool& freed) : CommandMessage(PRIME_SYSTEM), m_freed(freed) {}
    FreedMessage(const FreedMessage&) = delete;
    FreedMessage& operator=(const FreedMessage&) = delete;
    ~FreedMessage() override { m_freed = true; }

private:
    bool& m_freed;
};

// Counts those that were freed.
class CountingMessage : public CommandMessage {
public:
    explicit CountingMessage(int& freed) : CommandMessage(PRIME_SYSTEM), m_freed(freed) {}
    CountingMessage(const CountingMessage&) = delete;
    CountingMessage& operator=(const CountingMessage&) = delete;
    ~CountingMessage() override { ++m_freed; }

private:
    int& m_freed;
};

}  // namespace

TEST(ThreadControl, a_message_from_before_its_start_is_received) {
    RecordingController one("One");
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.CreateThread();
    EXPECT_EQ(one.WaitForNotes(2), (Notes{"init", "PRIME_SYSTEM"}));
}

TEST(ThreadControl, drains_its_queue_in_order_of_arrival) {
    RecordingController one("One");
    for (const CommandType command : {PRIME_SYSTEM, MOVE_TO_IDLE, COLLECT_MEASUREMENT}) {
        one.ReceiveMessage(Command(command, &one, &one));
    }
    one.CreateThread();
    EXPECT_EQ(one.WaitForNotes(4), (Notes{"init", "PRIME_SYSTEM", "MOVE_TO_IDLE", "COLLECT_MEASUREMENT"}));
}

TEST(ThreadControl, starts_initializing_with_no_time_out) {
    RecordingController one("One");
    EXPECT_EQ(one.GetTimeOut(), -1);
    one.CreateThread();
    one.WaitForNotes(1);
    EXPECT_EQ(one.GetState(), INITIALIZING_STATE);
}

TEST(ThreadControl, Kill_ends_the_thread) {
    EndingController one("One");
    one.CreateThread();
    one.WaitForNotes(1);
    one.Kill();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "exit"}));
    EXPECT_EQ(one.GetState(), POST_EXITING_STATE);
}

TEST(ThreadControl, killed_while_draining_processes_the_messages_before_its_killing_message) {
    EndingController one("One");
    one.onCommand = [&](CommandMessage& message) {
        if (message.GetCommandType() == RESET_SYSTEM) {
            one.Kill();
        }
    };
    one.ReceiveMessage(Command(RESET_SYSTEM, &one, &one));
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.CreateThread();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "RESET_SYSTEM", "PRIME_SYSTEM", "exit"}));
}

TEST(ThreadControl, drops_the_messages_after_its_own_killing_message) {
    EndingController one("One");
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.ReceiveMessage(Command(KILLING_SYSTEM, &one, &one));
    one.ReceiveMessage(Command(COLLECT_MEASUREMENT, &one, &one));
    one.CreateThread();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "PRIME_SYSTEM", "exit"}));
}

TEST(ThreadControl, drops_a_killing_message_from_another) {
    RecordingController one("One");
    RecordingController other("Other");
    one.ReceiveMessage(Command(KILLING_SYSTEM, &other, &one));
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.CreateThread();
    one.ReceiveMessage(Command(COLLECT_MEASUREMENT, &one, &one));
    EXPECT_EQ(one.WaitForNotes(3), (Notes{"init", "PRIME_SYSTEM", "COLLECT_MEASUREMENT"}));
}

TEST(ThreadControl, drops_a_killing_message_with_another_destination) {
    RecordingController one("One");
    RecordingController other("Other");
    one.ReceiveMessage(Command(KILLING_SYSTEM, &one, &other));
    one.CreateThread();
    one.ReceiveMessage(Command(COLLECT_MEASUREMENT, &one, &one));
    EXPECT_EQ(one.WaitForNotes(2), (Notes{"init", "COLLECT_MEASUREMENT"}));
}

TEST(ThreadControl, processes_a_second_reset_that_is_queued) {
    EndingController one("One");
    one.onCommand = [&](CommandMessage&) { one.Kill(); };
    one.ReceiveMessage(Command(RESET_SYSTEM, &one, &one));
    one.ReceiveMessage(Command(RESET_SYSTEM, &one, &one));
    one.CreateThread();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "RESET_SYSTEM", "RESET_SYSTEM", "exit"}));
}

TEST(ThreadControl, a_false_answer_ends_the_thread_after_the_draining) {
    EndingController one("One");
    one.commandResult = false;
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.ReceiveMessage(Command(COLLECT_MEASUREMENT, &one, &one));
    one.CreateThread();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "PRIME_SYSTEM", "COLLECT_MEASUREMENT", "exit"}));
}

TEST(ThreadControl, an_Init_that_fails_goes_straight_to_Exit) {
    // No router: the registration fails.
    EndingController one("One", LOGGING_DATA_MESSAGE);
    one.ReceiveMessage(Command(PRIME_SYSTEM, &one, &one));
    one.CreateThread();
    one.JoinAndForget();
    EXPECT_EQ(one.Notes(), (Notes{"init", "exit"}));
}

TEST(ThreadControl, a_message_after_the_end_is_freed_at_once) {
    EndingController one("One");
    one.CreateThread();
    one.Kill();
    one.JoinAndForget();
    bool freed = false;
    one.ReceiveMessage(std::make_unique<FreedMessage>(freed));
    EXPECT_TRUE(freed);
    EXPECT_EQ(one.WaitForNotes(2).back(), "exit");
}

TEST(ThreadControl, a_message_before_the_end_is_freed_with_its_queue) {
    bool freed = false;
    {
        RecordingController one("One");
        one.ReceiveMessage(std::make_unique<FreedMessage>(freed));
        EXPECT_FALSE(freed);
    }
    EXPECT_TRUE(freed);
}

TEST(MessageBuffer, is_named_after_its_thread) {
    const MessageBuffer buffer("One");
    EXPECT_EQ(buffer.GetName(), "One_MessageBuffer");
}

TEST(MessageBuffer, gives_null_without_an_error_if_the_semaphore_is_ahead) {
    MessageBuffer buffer("One");
    buffer.PostMessage(std::make_unique<CommandMessage>(PRIME_SYSTEM));
    EXPECT_NE(buffer.PopFront(), nullptr);
    EXPECT_EQ(buffer.WaitForMessage(-1), nullptr);
    EXPECT_EQ(buffer.GetLastError(), 0);
}

TEST(MessageBuffer, reports_a_time_out_until_the_next_wait) {
    MessageBuffer buffer("One");
    EXPECT_EQ(buffer.WaitForMessage(0), nullptr);
    EXPECT_EQ(buffer.GetLastError(), ETIMEDOUT);
    buffer.PostMessage(std::make_unique<CommandMessage>(PRIME_SYSTEM));
    EXPECT_NE(buffer.WaitForMessage(0), nullptr);
    EXPECT_EQ(buffer.GetLastError(), 0);
}

TEST(MessageBuffer, frees_any_number_of_messages_with_itself) {
    constexpr int many = 200000;  // more than a stack has frames
    int freed = 0;
    {
        MessageBuffer buffer("One");
        for (int posted = 0; posted < many; ++posted) {
            buffer.PostMessage(std::make_unique<CountingMessage>(freed));
        }
        EXPECT_NE(buffer.PopFront(), nullptr);
    }
    EXPECT_EQ(freed, many);
}

TEST(MessageBuffer, loses_no_message_when_posts_and_time_outs_meet) {
    constexpr int senders = 3;
    constexpr int messages = 2000;
    MessageBuffer buffer("One");
    std::vector<std::thread> threads;
    for (int sender = 0; sender < senders; ++sender) {
        threads.emplace_back([&buffer, sender] {
            for (int number = 0; number < messages; ++number) {
                auto message = std::make_unique<LogInfoMessage>();
                message->SetSubType(sender * messages + number);
                buffer.PostMessage(std::move(message));
            }
        });
    }
    std::vector<int> next = {0, messages, 2 * messages};
    int waits = 0;
    for (int taken = 0; taken < senders * messages;) {
        ++waits;
        const std::unique_ptr<MessageBase> message = buffer.WaitForMessage(waits % 3 == 0 ? -1 : 0);
        if (message != nullptr) {
            const int number = static_cast<const LogInfoMessage&>(*message).GetSubType();
            EXPECT_EQ(number, next.at(static_cast<std::size_t>(number / messages))++);
            ++taken;
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(next, (std::vector<int>{messages, 2 * messages, 3 * messages}));
    EXPECT_EQ(buffer.WaitForMessage(0), nullptr);
    EXPECT_EQ(buffer.GetLastError(), ETIMEDOUT);
}
