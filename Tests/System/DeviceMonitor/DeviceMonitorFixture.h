// A DeviceMonitor on a board of its own without noise, with a router, and a witness that hears what it sends and plays
// the remote indicator's sound as it is asked to.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"
#include "System/DeviceMonitor/DeviceMonitor.h"
#include "System/DeviceMonitor/PeriodicHardwareTestMessage.h"
#include "System/DeviceMonitor/RemoteIndicatorAudioControlMessage.h"
#include "System/SystemMonitor/RemoteIndicatorControlMessage.h"
#include "Tests/Support/BoardFixture.h"

using Texts = std::vector<std::string>;

// One line a message, in order of arrival.
class Witness final : public ThreadControl {
public:
    Witness(ControllerType name, Bench::Board& board) : m_board(board) { SetThreadName(ControllerNames[name]); }

    bool Init() override { return ThreadControl::Init() && DoRegistration(); }
    bool DoRegistration() override {
        RegisterForCommand(KILLING_SYSTEM);  // enters the name
        for (const DataMessageType type :
             {LOGGING_DATA_MESSAGE, REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE,
              REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE, PERIODIC_HARDWARE_TEST_DATA_MESSAGE}) {
            RegisterForDataMessage(type);
        }
        m_listens = true;
        return true;
    }
    bool ProcessCommandMessage(CommandMessage* /*message*/) override { return true; }
    bool ProcessDataMessage(DataMessage* message) override {
        const std::string text = TextOf(*message);
        const std::lock_guard lock(m_mutex);
        m_texts.push_back(text);
        return true;
    }
    bool ProcessTimeOut() override { return true; }

    bool Listens() const { return m_listens; }

    Texts Heard() {
        const std::lock_guard lock(m_mutex);
        return m_texts;
    }

    void Forget() {
        const std::lock_guard lock(m_mutex);
        m_texts.clear();
    }

private:
    static std::string Number(std::int32_t number) { return std::to_string(number); }

    std::string TextOf(const DataMessage& message) {
        const std::string sender = " from " + message.GetSource()->GetThreadName().Text();
        const std::string role = message.GetSubType() == REQUEST_SUB_TYPE ? "" : " as " + Number(message.GetSubType());
        switch (message.GetDataType()) {
            case LOGGING_DATA_MESSAGE: {
                const LogInfo& info = static_cast<const LogInfoMessage&>(message).GetLogInfo();
                return "log " + Number(info.GetLogLevel()) + " " + info.GetText().Text() + sender;
            }
            case REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE: {
                const auto& colors = static_cast<const RemoteIndicatorControlMessage&>(message);
                return "colors " + Number(colors.GetAnalyzerStatus()) + " " + Number(colors.GetWaterStatus()) +
                       " select " + Number(colors.GetStatusSelect()) + role + sender;
            }
            case REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE: {
                const auto& audio = static_cast<const RemoteIndicatorAudioControlMessage&>(message);
                Act(audio.GetAction());
                return "audio " + Number(audio.GetAction()) + " [" + audio.GetFileName().Text() + "]" + role + sender;
            }
            default: {
                const auto& test = static_cast<const PeriodicHardwareTestMessage&>(message);
                return "test " + Number(test.GetTestSelector()) + " verdict " + Number(test.GetVerdict()) + role +
                       sender;
            }
        }
    }

    // Once the sound plays, time may pass fast.
    void Act(std::int32_t action) {
        m_board.SetAudioPlaying(action == 1);
        if (action == 1) {
            m_board.SetSpeed(100.0);
        }
    }

    Bench::Board& m_board;
    std::mutex m_mutex;
    Texts m_texts;
    std::atomic<bool> m_listens{false};
};

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
    explicit DeviceMonitorFixture(double speed) : BoardTest(Setup(speed)), witness(SYSTEM_MONITOR, Board()) {
        MessageController::SetLogLevel(ERROR_LOG_LEVEL);
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
        MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
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

    void SetSettings(const std::function<void(Bench::InstrumentSettings& settings)>& change) {
        Bench::InstrumentSettings settings = Board().Settings();
        change(settings);
        Board().SetSettings(settings);
    }

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
