// The controller that turns each chlorine value into a water status for the remote indicator, checks that the indicator
// acknowledges each request in time, and counts the results of its LED tests, in every state. Other threads use
// messages only; the acknowledgement timer sends an AckTimerExpiredMessage.
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
    static constexpr std::int32_t TestCount = 7;  // one per IndicatorTestId

    SystemMonitor();  // starts the thread

    bool Init() override;
    // Registers all types, and returns false if any was refused.
    bool DoRegistration() override;
    bool ProcessDataMessage(DataMessage* message) override;
    // Requests the next LED test. It is never called yet, since this controller sets no time-out.
    bool ProcessTimeOut() override;

    // The last verdict of a test, by IndicatorTestId. The controller's own thread only.
    bool GetTestResult(std::size_t testId) const { return m_testResults.at(testId); }

    // 5 while a periodic hardware test drives the LED tests; nothing sets it yet. The controller's own thread only.
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
    std::vector<std::int32_t>::const_iterator m_currentTest;  // the test whose result is next
    std::unique_ptr<RemoteIndicatorAckTimer> m_ackTimer;
    float m_alarmLevel = 0.0F;  // in the unit of the chlorine value
    float m_alertLevel = 0.0F;
    std::int32_t m_ackTimeout = 0;  // ms
    std::int32_t m_testMode = 0;
    std::array<bool, TestCount> m_testResults{};
};
