// Paces the test sequences: at its end the test interface gets a TimerCompleteMessage with the command that is to
// follow. The test interface's thread sets and starts it.
#pragma once

#include "Frameworks/Threading/BaseTimer.h"

class TestInterfaceTimer final : public BaseTimer {
public:
    TestInterfaceTimer();
    TestInterfaceTimer(const TestInterfaceTimer&) = delete;
    TestInterfaceTimer& operator=(const TestInterfaceTimer&) = delete;
    ~TestInterfaceTimer() override { EndRuns(); }

    void SetNextCommand(CommandType nextCommand) { m_nextCommand = nextCommand; }
    CommandType GetNextCommand() const { return m_nextCommand; }

private:
    bool TimerExpired() override;

    std::atomic<CommandType> m_nextCommand = NO_COMMAND;
};
