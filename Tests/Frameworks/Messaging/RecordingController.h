// A controller that records its messages, for tests that look at queues and routing from the outside.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Messaging/ThreadControl.h"

inline constexpr std::chrono::seconds HangDeadline{60};

class RecordingController : public ThreadControl {
public:
    explicit RecordingController(const char* name, DataMessageType type = NO_DATA_MESSAGE, std::int32_t timeOut = -1)
        : m_type(type) {
        SetThreadName(name);
        SetTimeOut(timeOut);
    }

    ~RecordingController() override { End(); }

    bool DoRegistration() override { return m_type == NO_DATA_MESSAGE || RegisterForDataMessage(m_type); }

    bool Init() override {
        const bool result = ThreadControl::Init() && DoRegistration();
        Note("init");
        return result;
    }

    bool ProcessCommandMessage(CommandMessage* message) override {
        const CommandType command = message->GetCommandType();
        if (onCommand) {
            onCommand(*message);
        }
        Note(CommandNames[command].Text());
        return commandResult;
    }

    bool ProcessDataMessage(DataMessage* message) override {
        if (message->GetDataType() == LOGGING_DATA_MESSAGE) {
            Note(static_cast<LogInfoMessage*>(message)->GetLogInfo().GetText().Text());
        } else {
            Note(DataMessageNames[message->GetDataType()].Text());
        }
        return true;
    }

    bool ProcessTimeOut() override {
        Note("time-out");
        return true;
    }

    std::int32_t Exit() override {
        const std::int32_t result = ThreadControl::Exit();
        Note("exit");
        return result;
    }

    // Waits for that many notes; the deadline only ends a hang.
    std::vector<std::string> WaitForNotes(std::size_t count) {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(lock, HangDeadline, [&] { return m_notes.size() >= count; }))
            << m_notes.size() << " of " << count << " notes came";
        return m_notes;
    }

    void WaitForNote(const std::string& note) {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(
            lock, HangDeadline, [&] { return std::find(m_notes.begin(), m_notes.end(), note) != m_notes.end(); }))
            << note << " did not come";
    }

    void ForgetNotes() {
        const std::lock_guard lock(m_mutex);
        m_notes.clear();
    }

    std::vector<std::string> Notes() {
        const std::lock_guard lock(m_mutex);
        return m_notes;
    }

    std::function<void(CommandMessage&)> onCommand;  // set before CreateThread
    bool commandResult = true;

protected:
    // A subclass calls this first in its destructor: until then the thread uses the subclass.
    void End() {
        if (GetThreadId() != 0 && !std::exchange(m_hasEnded, true)) {
            Kill();
            pthread_join(GetThreadId(), nullptr);
        }
    }

private:
    void Note(const std::string& note) {
        const std::lock_guard lock(m_mutex);
        m_notes.push_back(note);
        m_changed.notify_all();
    }

    const DataMessageType m_type;
    bool m_hasEnded = false;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_notes;
};

// Keeps a clone of the last message that reached it.
class CloningController : public RecordingController {
public:
    using RecordingController::RecordingController;
    ~CloningController() override { End(); }

    bool ProcessCommandMessage(CommandMessage* message) override {
        clone = message->Clone();
        return RecordingController::ProcessCommandMessage(message);
    }

    bool ProcessDataMessage(DataMessage* message) override {
        clone = message->Clone();
        return RecordingController::ProcessDataMessage(message);
    }

    std::unique_ptr<MessageBase> clone;  // once it has noted the message
};

// A clone of a clone that was sent, each once.
inline std::unique_ptr<MessageBase> SentTwice(std::unique_ptr<MessageBase> message) {
    for (int sent = 0; sent < 2; ++sent) {
        CloningController controller("One");
        controller.CreateThread();
        message->SetSource(&controller);
        message->SetDestination(&controller);
        EXPECT_TRUE(MessageBase::Send(std::move(message)));
        controller.WaitForNotes(2);
        message = std::move(controller.clone);
    }
    return message;
}

// The log level of a test: without the trace of messages, set before the router writes its first line.
class QuietLog {
public:
    QuietLog() { MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL); }
    ~QuietLog() { MessageController::SetLogLevel(RUMOR_LOG_LEVEL); }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
};

// A router for the length of a test, and controllers that outlive it: as in the system, no controller is deleted while
// the router may still deliver.
class RouterFixture : public testing::Test {
protected:
    RouterFixture() { MessageBase::SetMessagingControl(&router); }

    ~RouterFixture() override {
        MessageBase::SetMessagingControl(nullptr);
        router.Kill();
        pthread_join(router.GetThreadId(), nullptr);
    }

    RecordingController& Add(const char* name, DataMessageType type = NO_DATA_MESSAGE) {
        m_controllers.push_back(std::make_unique<RecordingController>(name, type));
        return *m_controllers.back();
    }

    // A running controller that gets the log lines, with the router up and nothing noted yet.
    RecordingController& AddLogger(const char* name = "Logger") {
        RecordingController& logger = Add(name, LOGGING_DATA_MESSAGE);
        logger.CreateThread();
        logger.WaitForNote("init");
        logger.Log("ready", NOTICE_LOG_LEVEL);
        logger.WaitForNote("ready");
        logger.ForgetNotes();
        return logger;
    }

private:
    QuietLog m_quiet;
    std::vector<std::unique_ptr<RecordingController>> m_controllers;

protected:
    MessagingControl router;
};
