// Turns each chlorine value into a water status for the remote indicator, watches that the indicator acknowledges each
// colour request in time, and keeps the score of the indicator's LED tests, in every state. Other threads reach it by
// messages alone; the acknowledgement timer by its AckTimerExpiredMessage.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "Frameworks/Messaging/ThreadControl.h"
#include "System/SystemMonitor/RemoteIndicatorAckTimer.h"

class MeasurementMessage;
class PeriodicHardwareTestMessage;
class RemoteIndicatorTestMessage;

class SystemMonitor final : public ThreadControl {
public:
    static constexpr std::int32_t TestCount = 7;  // 0 the indicator as a whole, 1 to 6 its LEDs

    SystemMonitor();  // starts the thread

    bool Init() override;
    // Registers what it can; false where any type was refused.
    bool DoRegistration() override;
    bool ProcessDataMessage(DataMessage* message) override;
    // The next LED test. Nothing drives it yet: the wait of this thread has no limit.
    bool ProcessTimeOut() override;

    // The last verdict of a test, 0 to 6. On the controller's own thread.
    bool GetTestResult(std::size_t testId) const { return m_testResults.at(testId); }

    // 5 while a periodic test of the hardware leads the LED tests; nobody sets it yet. On the controller's own thread.
    std::int32_t GetTestMode() const { return m_testMode; }
    void SetTestMode(std::int32_t testMode) { m_testMode = testMode; }

private:
    bool ReadConfiguration();
    void ProcessMeasurement(const MeasurementMessage& message);
    void ProcessTestResponse(const RemoteIndicatorTestMessage& message);
    void ProcessHardwareTestResponse(const PeriodicHardwareTestMessage& message);
    void ScoreTest(std::int32_t testId, bool good);
    void ClosePass();

    std::vector<std::int32_t> m_testSequence;
    std::vector<std::int32_t>::const_iterator m_currentTest;  // whose result is awaited
    std::unique_ptr<RemoteIndicatorAckTimer> m_ackTimer;
    float m_alarmLevel = 0.0F;  // as the chlorine value
    float m_alertLevel = 0.0F;
    std::int32_t m_ackTimeout = 0;  // ms
    std::int32_t m_testMode = 0;
    std::array<bool, TestCount> m_testResults{};
};
