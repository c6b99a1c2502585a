#include "System/SystemMonitor/SystemMonitor.h"

#include <iterator>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"

namespace {

struct RegistrationRow {
    DataMessageType type;
    const char* failure;
};

constexpr RegistrationRow Registrations[] = {
    {MEASUREMENT_DATA_MESSAGE, "SystemMonitor::MEASUREMENT_DATA_MESSAGE registration failed!"},
    {REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE,
     "SystemMonitor::REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE registration failed!"},
    {ACK_TIMER_EXPIRED_DATA_MESSAGE, "SystemMonitor::ACK_TIMER_EXPIRED_DATA_MESSAGE registration failed!"},
    {PERIODIC_HARDWARE_TEST_DATA_MESSAGE, "SystemMonitor::PERIODIC_HARDWARE_TEST_DATA_MESSAGE registration failed!"},
    {REMOTE_INDICATOR_TEST_MESSAGE, "SystemMonitor::REMOTE_INDICATOR_TEST_MESSAGE registration failed!"},
};

// By test id.
constexpr const char* TestFailures[SystemMonitor::TestCount] = {
    "Remote indicator is not connected!",     //
    "Blue analyzer LED is non-functional!",   //
    "Amber analyzer LED is non-functional!",  //
    "Red analyzer LED is non-functional!",    //
    "Blue water LED is non-functional!",      //
    "Amber water LED is non-functional!",     //
    "Red water LED is non-functional!",       //
};

constexpr std::int32_t NoTestMode = 0;
constexpr std::int32_t PeriodicTestMode = 5;
constexpr std::uint8_t MinGoodTests = 3;

// Good results of the current pass. A process-wide variable, so that a pass continues after a reset.
std::uint8_t passCounter = 0;

void SendTestRequest(std::int32_t testId) {
    auto request = TryMake<RemoteIndicatorTestMessage>();
    if (request == nullptr) {
        return;
    }
    request->SetSubType(REQUEST_SUB_TYPE);
    request->SetTestId(testId);
    MessageController::SendMessage(std::move(request), SYSTEM_MONITOR);
}

}  // namespace

SystemMonitor::SystemMonitor() { StartAs(ControllerNames[SYSTEM_MONITOR]); }

bool SystemMonitor::Init() {
    if (!InitController()) {
        return false;
    }
    if (!DoRegistration()) {
        Log("System Monitor - DoRegistration failed!", ERROR_LOG_LEVEL);
        return false;
    }
    m_testSequence = {WHOLE_INDICATOR_TEST, BLUE_ANALYZER_LED_TEST, AMBER_ANALYZER_LED_TEST, RED_ANALYZER_LED_TEST,
                      BLUE_WATER_LED_TEST,  AMBER_WATER_LED_TEST,   RED_WATER_LED_TEST};
    for (const std::int32_t test : m_testSequence) {
        m_testResults.at(static_cast<std::size_t>(test)) = false;
    }
    m_currentTest = m_testSequence.cbegin();
    m_ackTimer = TryMake<RemoteIndicatorAckTimer>();
    return m_ackTimer != nullptr && ReadConfiguration();
}

bool SystemMonitor::DoRegistration() {
    bool registered = true;
    for (const RegistrationRow& row : Registrations) {
        if (!RegisterForDataMessage(row.type)) {
            Log(row.failure, ERROR_LOG_LEVEL);
            registered = false;
        }
    }
    return registered;
}

bool SystemMonitor::ReadConfiguration() {
    const SystemConfigurationFile* file = SingletonBase::GetSystemConfiguration();
    const ConfigurationBase* section = file == nullptr ? nullptr : file->GetSystemMonitoringConfigInfo();
    if (section == nullptr) {
        return false;
    }
    m_alarmLevel = section->RequireValue("AlarmLevel").ToFloat();
    m_alertLevel = section->RequireValue("AlertLevel").ToFloat();
    m_ackTimeout = section->RequireValue("AckTimeout").ToInteger();
    return true;
}

bool SystemMonitor::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return true;
    }
    switch (message->GetDataType()) {
        case MEASUREMENT_DATA_MESSAGE:
            ProcessMeasurement(static_cast<const MeasurementMessage&>(*message));
            break;
        case REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE:
            if (message->GetSubType() == ACKNOWLEDGE_SUB_TYPE) {
                m_ackTimer->Kill();
            }
            break;
        case ACK_TIMER_EXPIRED_DATA_MESSAGE:
            Log("SystemMonitor::Did not receive an ACK message from the remote indicator!", ERROR_LOG_LEVEL);
            break;
        case REMOTE_INDICATOR_TEST_MESSAGE:
            if (message->GetSubType() == RESPONSE_SUB_TYPE) {
                ProcessTestResponse(static_cast<const RemoteIndicatorTestMessage&>(*message));
            }
            break;
        case PERIODIC_HARDWARE_TEST_DATA_MESSAGE:
            if (message->GetSubType() == RESPONSE_SUB_TYPE) {
                ProcessHardwareTestResponse(static_cast<const PeriodicHardwareTestMessage&>(*message));
            }
            break;
        default:
            break;
    }
    return true;
}

// Each value is judged independently, without hysteresis: one low value after an alarm is normal again. A value equal
// to a level reaches it; NaN is normal.
void SystemMonitor::ProcessMeasurement(const MeasurementMessage& message) {
    const auto chlorine = static_cast<float>(message.GetMeasurementResults().GetChlorine());
    std::int32_t waterStatus = NORMAL_STATUS;
    if (m_alarmLevel <= chlorine) {
        waterStatus = ALARM_STATUS;
    } else if (m_alertLevel <= chlorine) {
        waterStatus = ALERT_STATUS;
    }
    auto request = TryMake<RemoteIndicatorControlMessage>();
    if (request == nullptr) {
        return;
    }
    request->SetSubType(REQUEST_SUB_TYPE);
    request->SetWaterStatus(waterStatus);
    request->SetStatusSelect(WATER_STATUS);
    MessageController::SendMessage(std::move(request), SYSTEM_MONITOR);
    m_ackTimer->SetDuration(static_cast<std::uint32_t>(m_ackTimeout));
    if (!m_ackTimer->Start()) {
        Log("SystemMonitor::ACK timer could not be started!", ERROR_LOG_LEVEL);
    }
}

void SystemMonitor::ProcessTestResponse(const RemoteIndicatorTestMessage& message) {
    const bool good = message.GetVerdict() != 0;
    const std::int32_t testId = *m_currentTest;
    m_testResults.at(static_cast<std::size_t>(testId)) = good;
    if (m_testMode != PeriodicTestMode) {
        ScoreTest(testId, good);
    }
    m_testMode = NoTestMode;
}

void SystemMonitor::ScoreTest(std::int32_t testId, bool good) {
    if (good) {
        ++passCounter;
    } else {
        Log(TestFailures[testId], ERROR_LOG_LEVEL);
    }
    if (std::next(m_currentTest) == m_testSequence.cend()) {
        ClosePass();
    }
}

void SystemMonitor::ClosePass() {
    const bool connected = passCounter >= MinGoodTests;
    m_testResults[WHOLE_INDICATOR_TEST] = connected;
    if (!connected) {
        Log(TestFailures[WHOLE_INDICATOR_TEST], ERROR_LOG_LEVEL);
    }
    passCounter = 0;
}

void SystemMonitor::ProcessHardwareTestResponse(const PeriodicHardwareTestMessage& message) {
    if (m_testMode != PeriodicTestMode) {
        return;
    }
    if (message.GetVerdict() != 0) {
        SendTestRequest(WHOLE_INDICATOR_TEST);
    } else {
        m_testMode = NoTestMode;
    }
}

// The whole indicator is tested once after a start; each later pass tests only the LEDs.
bool SystemMonitor::ProcessTimeOut() {
    ThreadControl::ProcessTimeOut();
    ++m_currentTest;
    if (m_currentTest == m_testSequence.cend()) {
        m_currentTest = std::next(m_testSequence.cbegin());
    }
    SendTestRequest(*m_currentTest);
    return true;
}
