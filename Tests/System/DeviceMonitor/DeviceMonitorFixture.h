// A DeviceMonitor on a board of its own without noise, with a router and a witness.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"
#include "System/DeviceMonitor/DeviceMonitor.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/System/DeviceMonitor/Witness.h"

// A name in the router's table, for a controller that isn't there.
class Named final : public ThreadControl {
public:
    explicit Named(ControllerType name) { SetThreadName(ControllerNames[name]); }
    bool DoRegistration() override { return true; }
    bool ProcessCommandMessage(CommandMessage* /*message*/) override { return true; }
    bool ProcessDataMessage(DataMessage* /*message*/) override { return true; }
    bool ProcessTimeOut() override { return true; }
};

class DeviceMonitorFixture : public BoardTest {
protected:
    explicit DeviceMonitorFixture(double speed) : BoardTest(Setup(speed)), witness("Witness", HeardTypes, &Board()) {
        MessageBase::SetMessagingControl(&router);
        router.RegisterCommand(&m_systemControl, KILLING_SYSTEM);
        router.RegisterCommand(&m_remoteIndicator, KILLING_SYSTEM);
        EXPECT_TRUE(witness.CreateThread());
        EXPECT_TRUE(Board().WaitUntil([this] { return witness.Listens(); }));
    }

    ~DeviceMonitorFixture() override {
        Stop();
        End(witness);
        MessageBase::SetMessagingControl(nullptr);
        End(router);
    }

    void Start() {
        monitor = std::make_unique<DeviceMonitor>();
        for (const CommandType command :
             {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST, COLLECT_MEASUREMENT, PRIME_SYSTEM}) {
            router.RegisterCommand(monitor.get(), command);
        }
        Send(MOVE_TO_IDLE);
        WaitForState(IDLE_STATE);
    }

    // Another may start afterwards. It is kept, since the router knows its address to the end.
    void Stop() {
        if (monitor != nullptr) {
            End(*monitor);
            m_ended.push_back(std::move(monitor));
        }
    }

    const DeviceMonitor& LastEnded() const { return *m_ended.back(); }

    void Send(CommandType command) {
        auto message = std::make_unique<CommandMessage>(command);
        message->SetSource(monitor.get());
        message->SetDestination(monitor.get());
        ASSERT_TRUE(MessageBase::Send(std::move(message)));
    }

    void WaitForState(ThreadState state) {
        EXPECT_TRUE(Board().WaitUntil([&] { return monitor->GetState() == state; }));
    }

    void Request(std::int32_t selector, std::int32_t subType = REQUEST_SUB_TYPE) {
        auto message = std::make_unique<PeriodicHardwareTestMessage>();
        message->SetTestSelector(selector);
        message->SetSubType(subType);
        ASSERT_TRUE(MessageController::SendMessage(std::move(message), SYSTEM_CONTROL));
    }

    // All that is sent from the request of a test up to its verdict.
    Texts Test(std::int32_t selector) {
        witness.Forget();
        Request(selector);
        EXPECT_TRUE(Board().WaitUntil([this] {
            const Texts heard = witness.Heard();
            return !heard.empty() && heard.back().find(" as 1 from DeviceMonitor") != std::string::npos;
        }));
        Texts heard = witness.Heard();
        EXPECT_EQ(heard.front(), "test " + std::to_string(selector) + " verdict 0 from SystemControl");
        heard.erase(heard.begin());
        return heard;
    }

    // How often the monitor said that its second has passed, at the level of debugging lines.
    long Ticks() {
        const Texts heard = witness.Heard();
        return std::count(heard.begin(), heard.end(),
                          "log 7 Processing TimeOut for - DeviceMonitor from DeviceMonitor");
    }

    void SetSettings(const std::function<void(Bench::InstrumentSettings& settings)>& change) {
        Bench::InstrumentSettings settings = Board().Settings();
        change(settings);
        Board().SetSettings(settings);
    }

    static inline const std::vector<DataMessageType> HeardTypes = {
        LOGGING_DATA_MESSAGE, REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE, REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE,
        PERIODIC_HARDWARE_TEST_DATA_MESSAGE};

private:
    // From before the router writes its first line.
    class ErrorsOnly {
    public:
        ErrorsOnly() { MessageController::SetLogLevel(ERROR_LOG_LEVEL); }
        ~ErrorsOnly() { MessageController::SetLogLevel(RUMOR_LOG_LEVEL); }
        ErrorsOnly(const ErrorsOnly&) = delete;
        ErrorsOnly& operator=(const ErrorsOnly&) = delete;
    } m_errorsOnly;

protected:
    MessagingControl router;
    Witness witness;
    std::unique_ptr<DeviceMonitor> monitor;

private:
    static Bench::BoardSetup Setup(double speed) {
        Bench::BoardSetup setup;
        setup.speed = speed;
        setup.noise = false;
        return setup;
    }

    static void End(ThreadControl& thread) {
        thread.Kill();
        EXPECT_EQ(pthread_join(thread.GetThreadId(), nullptr), 0);
    }

    std::vector<std::unique_ptr<DeviceMonitor>> m_ended;
    Named m_systemControl{SYSTEM_CONTROL};
    Named m_remoteIndicator{REMOTE_INDICATOR_CONTROL};
};
