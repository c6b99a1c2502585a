// One controller on a board of its own, with the real router, the sample settings, and a keeper of log lines. Make it
// with Start; Barrier waits until it has served all that was posted before.
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
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/CapturingController.h"
#include "Tests/Support/SampleConfiguration.h"

template <typename Controller, ControllerType Type>
class ControllerOnBoard : public BoardTest {
protected:
    using Texts = std::vector<std::string>;

    explicit ControllerOnBoard(double speed = 50.0) : BoardTest(QuietAtSpeed(speed)) {
        MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
        BeginGeneration();
    }

    ~ControllerOnBoard() override {
        EndGeneration();
        MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
    }

    ControllerOnBoard(const ControllerOnBoard&) = delete;
    ControllerOnBoard& operator=(const ControllerOnBoard&) = delete;

    void LoadSettings() {
        configuration.LayInto(Folder());
        auto file = std::make_unique<SystemConfigurationFile>();
        ASSERT_TRUE(file->Load("/usr/share/vorn/bin/configuration/analyzer.conf.xml"));
        ASSERT_TRUE(SingletonBase::SetSystemConfiguration(std::move(file)));
        ASSERT_TRUE(SingletonBase::GetSystemConfiguration()->GetXML());
    }

    // With the settings as they stand in `configuration`.
    void Start() {
        LoadSettings();
        Launch();
        Barrier();
    }

    void Launch() {
        m_controller = std::make_unique<Controller>();
        m_router->RegisterCommand(m_controller.get(), KILLING_SYSTEM);  // enters the name
    }

    void Stop() {
        if (m_controller != nullptr) {
            m_controller->Kill();
            Join();
        }
    }

    // Where it ends by itself.
    void Join() {
        pthread_join(m_controller->GetThreadId(), nullptr);
        EnterName();
        Settle();  // the router delivers to it no more
        m_controller.reset();
    }

    // A router and a log of their own for the next controller, as after a reset. What else subscribed has to be gone.
    void Renew() {
        EndGeneration();
        BeginGeneration();
    }

    Controller& Get() { return *m_controller; }

    void Post(std::unique_ptr<MessageBase> message) {
        message->SetSource(&m_standIn);
        message->SetDestination(m_controller.get());
        EXPECT_TRUE(MessageBase::Send(std::move(message)));
    }

    void Tell(CommandType command) { Post(std::make_unique<CommandMessage>(command)); }

    void Barrier() {
        Tell(MOVE_TO_TEST);
        WaitForLine("Changing to TEST_STATE State for - " + ControllerNames[Type].Text(), ++m_barriers);
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

    void SetFault(const char* fault) {
        std::string error;
        EXPECT_TRUE(Board().SetFault(fault, error)) << error;
    }

    SampleConfiguration configuration;

private:
    // Stands for the rest of the system, and for the controller while there is none; it never runs.
    class StandIn final : public ThreadControl {
    public:
        StandIn() { SetThreadName(ControllerNames[Type]); }
        bool DoRegistration() override { return true; }
        bool ProcessCommandMessage(CommandMessage* /*message*/) override { return true; }
        bool ProcessDataMessage(DataMessage* /*message*/) override { return true; }
        bool ProcessTimeOut() override { return true; }
    };

    static Bench::BoardSetup QuietAtSpeed(double speed) {
        Bench::BoardSetup setup;
        setup.speed = speed;
        setup.noise = false;
        return setup;
    }

    void BeginGeneration() {
        m_router = std::make_unique<MessagingControl>();
        MessageBase::SetMessagingControl(m_router.get());
        m_log =
            std::make_unique<CapturingController>(ControllerNames[LOGGING_CONTROL], std::vector{LOGGING_DATA_MESSAGE});
        m_barriers = 0;
        EnterName();
        // The first line behind those from before the log was there is lost.
        MessageController::LogMessage("#lost", DEBUG_LOG_LEVEL, Type);
        Settle();
    }

    void EndGeneration() {
        Stop();
        MessageBase::SetMessagingControl(nullptr);
        m_router->Kill();
        pthread_join(m_router->GetThreadId(), nullptr);
        m_log.reset();
        m_router.reset();
        SingletonBase::SetSystemConfiguration(nullptr);
    }

    void EnterName() { m_router->RegisterCommand(&m_standIn, KILLING_SYSTEM); }

    // All that was logged before is kept.
    void Settle() {
        const std::string mark = "#settled " + std::to_string(++m_marks);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, Type);
        WaitForLine(mark);
    }

    StandIn m_standIn;
    std::unique_ptr<MessagingControl> m_router;
    std::unique_ptr<CapturingController> m_log;
    std::unique_ptr<Controller> m_controller;
    std::size_t m_barriers = 0;
    int m_marks = 0;
};
