// A DeviceMonitor on its own board, with a router and a witness.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Frameworks/Messaging/MessageController.h"
#include "System/DeviceMonitor/DeviceMonitor.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "Tests/Support/ExactTime.h"
#include "Tests/Support/TestRouter.h"
#include "Tests/System/DeviceMonitor/Witness.h"

class DeviceMonitorFixture : public ExactBoardTest {
protected:
    DeviceMonitorFixture() : witness("Witness", HeardTypes, &Board()) {
        router.AddName(m_systemControl);
        router.AddName(m_remoteIndicator);
        EXPECT_TRUE(witness.CreateThread());
        EXPECT_TRUE(Board().WaitUntil([this] { return witness.Listens(); }));
    }

    ~DeviceMonitorFixture() override {
        Stop();
        End(witness);
        router.End();
    }

    void Start() {
        monitor = std::make_unique<DeviceMonitor>();
        for (const CommandType command :
             {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST, COLLECT_MEASUREMENT, PRIME_SYSTEM}) {
            router->RegisterCommand(monitor.get(), command);
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

    // How often the monitor logged its time-out, which is each second.
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

    TestRouter router{ERROR_LOG_LEVEL};
    Witness witness;
    std::unique_ptr<DeviceMonitor> monitor;

private:
    static void End(ThreadControl& thread) {
        thread.Kill();
        EXPECT_EQ(pthread_join(thread.GetThreadId(), nullptr), 0);
    }

    std::vector<std::unique_ptr<DeviceMonitor>> m_ended;
    AbsentController m_systemControl{SYSTEM_CONTROL};
    AbsentController m_remoteIndicator{REMOTE_INDICATOR_CONTROL};
};
