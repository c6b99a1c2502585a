// A test interface with a router, the log and a controller that captures its requests.
#pragma once

#include <memory>

#include "Frameworks/Configuration/SingletonBase.h"
#include "System/TestInterface/TestInterface.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/LogReader.h"
#include "Tests/Support/SampleConfiguration.h"
#include "Tests/Support/TestLink.h"

class TestInterfaceAlone : public BoardTest {
protected:
    TestInterfaceAlone() : BoardTest(AtSpeed(50.0)) { EXPECT_TRUE(Board().MapPort(1200, listener.Port())); }

    ~TestInterfaceAlone() override {
        if (controller != nullptr && !m_hasEnded) {
            EndThread();
        }
        log.EndRouter();
        controller.reset();
        SingletonBase::SetSystemConfiguration(nullptr);
    }

    void Configure() {
        configuration.LayInto(Folder());
        auto file = std::make_unique<SystemConfigurationFile>();
        ASSERT_TRUE(file->Load("/usr/share/vorn/bin/configuration/analyzer.conf.xml"));
        ASSERT_TRUE(file->GetXML());
        SingletonBase::SetSystemConfiguration(std::move(file));
    }

    void Start() {
        Configure();
        controller = std::make_unique<TestInterface>();
        for (std::int32_t command = 0; command < CommandCount; ++command) {
            controller->RegisterForCommand(static_cast<CommandType>(command));
        }
    }

    void EndThread() {
        controller->Kill();
        pthread_join(controller->GetThreadId(), nullptr);
        m_hasEnded = true;
    }

    // In the test state, with the link up.
    RawConnection Connect() {
        Start();
        Command(MOVE_TO_TEST);
        return listener.Accept();
    }

    void Command(CommandType command) { controller->SendCommand(command); }

    bool WaitForState(ThreadState state) {
        return Board().WaitUntil([&] { return controller->GetState() == state; });
    }

    template <typename Message>
    static void Send(const Message& message) {
        EXPECT_TRUE(MessageController::SendMessage(message.Clone(), MEASUREMENT_ENGINE));
    }

    LogReader log;
    CapturingController engine{ControllerNames[MEASUREMENT_ENGINE],
                               {ADC_STATUS_MESSAGE, TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE,
                                TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE, TEST_PWM_DATA_MESSAGE}};
    RawListener listener;
    SampleConfiguration configuration;
    std::unique_ptr<TestInterface> controller;

private:
    bool m_hasEnded = false;
};
