// The whole system in this process, on the board: one generation of it at a time.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Frameworks/Messaging/MessageController.h"
#include "System/SystemControl/SystemControl.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/SampleConfiguration.h"
#include "Tests/Support/TimeZone.h"

class SystemOnBoard : public BoardTest {
protected:
    explicit SystemOnBoard(double speed) : BoardTest(AtSpeed(speed)) {
        configuration.Set("AutoStartMeasurement", "false").Set("LoggingLevel", "DEBUG_LOG_LEVEL");
    }

    ~SystemOnBoard() override {
        if (system != nullptr) {
            Reset();
        }
        MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
    }

    void Start() {
        configuration.LayInto(Folder());
        system = std::make_unique<SystemControl>();
    }

    // As RESET_SYSTEM from a link would.
    void Reset() {
        Send(RESET_SYSTEM);
        JoinAndDestroy();
    }

    void JoinAndDestroy() {
        EXPECT_EQ(pthread_join(system->GetThreadId(), nullptr), 0);
        system.reset();
    }

    void Send(CommandType command) {
        EXPECT_TRUE(MessageController::SendMessage(std::make_unique<CommandMessage>(command), SYSTEM_CONTROL));
    }

    // Texts of the system log without the time, in order.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const Bench::LogLine& line : Board().Log()) {
            const std::size_t mark = line.text.find(" :: ");
            lines.push_back(mark == std::string::npos ? line.text : line.text.substr(mark + 4));
        }
        return lines;
    }

    long CountOf(const std::string& text) const {
        const std::vector<std::string> lines = Lines();
        return std::count(lines.begin(), lines.end(), text);
    }

    void WaitFor(const std::string& text, long count = 1) {
        EXPECT_TRUE(Board().WaitUntil([&] { return CountOf(text) >= count; })) << "no line " << text;
    }

    static bool IsIdle(ControllerType controller) {
        MessagingControl* router = MessageBase::GetMessagingControl();
        const ThreadControl* thread =
            router == nullptr ? nullptr : router->GetThreadByName(ControllerNames[controller]);
        return thread != nullptr && thread->GetState() == IDLE_STATE;
    }

    // Every controller is idle, and the log is written: the line that releases those from before LoggingControl is
    // lost, so send two.
    void WaitForIdle() {
        EXPECT_TRUE(Board().WaitUntil([] {
            return IsIdle(SYSTEM_CONTROL) && IsIdle(MESSAGING_CONTROL) && IsIdle(LOGGING_CONTROL) &&
                   IsIdle(DEVICE_MONITOR) && IsIdle(USER_INTERFACE_DATA_CONTROL) && IsIdle(SYSTEM_MONITOR) &&
                   IsIdle(REMOTE_INDICATOR_CONTROL) && IsIdle(TEST_INTERFACE) && IsIdle(MEASUREMENT_ENGINE);
        }));
        MessageController::LogMessage("every controller is idle", EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        MessageController::LogMessage("every controller is idle", EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        WaitFor("every controller is idle");
    }

    // Whole seconds of the hour in the first line of that text.
    int TimeOf(const std::string& text) const {
        for (const Bench::LogLine& line : Board().Log()) {
            if (line.text.find(" :: " + text) != std::string::npos) {
                const std::size_t point = line.text.find('.');
                return std::stoi(line.text.substr(point - 2, 2)) + 60 * std::stoi(line.text.substr(point - 5, 2));
            }
        }
        ADD_FAILURE() << "no line " << text;
        return 0;
    }

    // Without a zone, libc reads its own again on each thread that asks for the local time, under a lock that the
    // thread sanitizer does not see.
    const TimeZone zone{"UTC"};
    SampleConfiguration configuration;
    std::unique_ptr<SystemControl> system;
};
