// One controller on its own board, with the real router, the sample settings, and a keeper of log lines. Make it with
// Start; Barrier waits until it has handled all that was posted before.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Tests/Support/CapturingController.h"
#include "Tests/Support/ExactTime.h"
#include "Tests/Support/SampleConfiguration.h"
#include "Tests/Support/TestRouter.h"

// In exact time, unless the fixture of the board is another.
template <typename Controller, ControllerType Type, typename OnBoard = ExactBoardTest>
class ControllerOnBoard : public OnBoard {
protected:
    using Texts = std::vector<std::string>;

    ControllerOnBoard() { BeginGeneration(); }

    ~ControllerOnBoard() override { EndGeneration(); }

    ControllerOnBoard(const ControllerOnBoard&) = delete;
    ControllerOnBoard& operator=(const ControllerOnBoard&) = delete;

    void LoadSettings() {
        configuration.LayInto(this->Folder());
        auto file = std::make_unique<SystemConfigurationFile>();
        ASSERT_TRUE(file->Load("/usr/share/vorn/bin/configuration/analyzer.conf.xml"));
        ASSERT_TRUE(SingletonBase::SetSystemConfiguration(std::move(file)));
        ASSERT_TRUE(SingletonBase::GetSystemConfiguration()->GetXML());
    }

    // With the settings in `configuration`.
    void Start() {
        LoadSettings();
        Launch();
        Barrier();
    }

    void Launch() {
        m_controller = std::make_unique<Controller>();
        m_router->AddName(*m_controller);
    }

    // Ends the thread and keeps the object, which the test may then call without a second thread.
    void End() {
        m_controller->Kill();
        pthread_join(m_controller->GetThreadId(), nullptr);
        m_hasEnded = true;
    }

    void Stop() {
        if (m_controller != nullptr) {
            if (!m_hasEnded) {
                End();
            }
            Retire();
        }
    }

    // Waits until it ends by itself.
    void Join() {
        pthread_join(m_controller->GetThreadId(), nullptr);
        Retire();
    }

    void LaunchAndExpectEnd() {
        Launch();
        WaitForLine("Changing to POST_EXITING_STATE State for - " + Name());
        Join();
    }

    // A new router and log for the next controller, as after a reset. Other subscribers must be gone.
    void Renew() {
        EndGeneration();
        BeginGeneration();
    }

    // Ends all threads. The first call in the destructor of a fixture with its own subscribers.
    void EndGeneration() {
        if (m_router != nullptr) {
            Stop();
            m_router->End();
            m_retired.clear();
            m_log.reset();
            m_router.reset();
            SingletonBase::SetSystemConfiguration(nullptr);
        }
    }

    Controller& Get() { return *m_controller; }
    static std::string Name() { return ControllerNames[Type].Text(); }

    void Post(std::unique_ptr<MessageBase> message) {
        message->SetSource(&m_standIn);
        message->SetDestination(m_controller.get());
        EXPECT_TRUE(MessageBase::Send(std::move(message)));
    }

    void Tell(CommandType command) { Post(std::make_unique<CommandMessage>(command)); }

    void Barrier() {
        Tell(MOVE_TO_TEST);
        WaitForLine("Changing to TEST_STATE State for - " + Name(), ++m_barriers);
    }

    void WaitForLine(const std::string& text, std::size_t count = 1) {
        m_log->WaitForSuch<LogInfoMessage>(
            LOGGING_DATA_MESSAGE,
            [&text](const LogInfoMessage& line) { return line.GetLogInfo().GetText() == text.c_str(); }, count);
    }

    // What was logged at that level, in order.
    Texts LinesOf(LogLevel level) {
        Settle();
        Texts texts;
        for (const LogInfoMessage& line : m_log->Copies<LogInfoMessage>(LOGGING_DATA_MESSAGE)) {
            if (line.GetLogInfo().GetLogLevel() == level) {
                texts.push_back(line.GetLogInfo().GetText().Text());
            }
        }
        return texts;
    }

    Texts Errors() { return LinesOf(ERROR_LOG_LEVEL); }

    SampleConfiguration configuration;

private:
    void BeginGeneration() {
        m_router = std::make_unique<TestRouter>(DEBUG_LOG_LEVEL);
        m_log =
            std::make_unique<CapturingController>(ControllerNames[LOGGING_CONTROL], std::vector{LOGGING_DATA_MESSAGE});
        m_barriers = 0;
        m_router->AddName(m_standIn);
        // The first line after those from before the log was there is lost.
        MessageController::LogMessage("#lost", DEBUG_LOG_LEVEL, Type);
        Settle();
    }

    // The router may still deliver to the object, so it is kept until the router has ended.
    void Retire() {
        m_router->AddName(m_standIn);
        Settle();
        m_retired.push_back(std::move(m_controller));
        m_hasEnded = false;
    }

    // All that was logged before is kept.
    void Settle() {
        const std::string mark = "#settled " + std::to_string(++m_marks);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, Type);
        WaitForLine(mark);
    }

    AbsentController m_standIn{Type};  // the sender, and the name's owner while there is no controller
    std::unique_ptr<TestRouter> m_router;
    std::unique_ptr<CapturingController> m_log;
    std::unique_ptr<Controller> m_controller;
    std::vector<std::unique_ptr<Controller>> m_retired;
    bool m_hasEnded = false;
    std::size_t m_barriers = 0;
    int m_marks = 0;
};
