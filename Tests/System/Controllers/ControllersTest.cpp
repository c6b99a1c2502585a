// What all nine controllers have in common. A tenth one needs a row here.
#include <gmock/gmock.h>

#include "System/DeviceMonitor/DeviceMonitor.h"
#include "System/LoggingControl/LoggingControl.h"
#include "System/MeasurementEngine/MeasurementEngine.h"
#include "System/RemoteIndicatorControl/RemoteIndicatorControl.h"
#include "System/SystemControl/SystemControl.h"
#include "System/SystemMonitor/SystemMonitor.h"
#include "System/TestInterface/TestInterface.h"
#include "System/UserInterfaceDataControl/UserInterfaceDataControl.h"
#include "Tests/Support/ControllerOnBoard.h"

namespace {

using testing::ElementsAreArray;

template <typename ControllerClass, ControllerType ControllerNumber>
struct Row {
    using Controller = ControllerClass;
    static constexpr ControllerType Type = ControllerNumber;
    static constexpr bool NullDataResult = false;
    static constexpr const char* Section = nullptr;  // of the settings, without which it ends
};

struct DeviceMonitorRow : Row<DeviceMonitor, DEVICE_MONITOR> {
    static constexpr const char* Name = "DeviceMonitor";
    static constexpr bool NullDataResult = true;
    static inline const std::vector<std::string> Refusals = {
        "DeviceMonitor::DoRegistration - PERIODIC_HARDWARE_TEST_DATA_MESSAGE failed!"};
};

struct LoggingControlRow : Row<LoggingControl, LOGGING_CONTROL> {
    static constexpr const char* Name = "LoggingControl";
    static constexpr const char* Section = "LOGGING_INFO";
    static inline const std::vector<std::string> Refusals = {};
    static inline const std::vector<std::string> MissingSectionErrors = {};
};

struct MeasurementEngineRow : Row<MeasurementEngine, MEASUREMENT_ENGINE> {
    static constexpr const char* Name = "MeasurementEngine";
    static inline const std::vector<std::string> Refusals = {};
};

struct MessagingControlRow : Row<MessagingControl, MESSAGING_CONTROL> {
    static constexpr const char* Name = "MessagingControl";
    static inline const std::vector<std::string> Refusals = {};
};

struct RemoteIndicatorControlRow : Row<RemoteIndicatorControl, REMOTE_INDICATOR_CONTROL> {
    static constexpr const char* Name = "RemoteIndicatorControl";
    static constexpr const char* Section = "REMOTE_INDICATOR_INFO";
    static inline const std::vector<std::string> Refusals = {"RemoteIndicatorControl::DoRegistration failed!"};
    static inline const std::vector<std::string> MissingSectionErrors = {
        "RemoteIndicatorControl - Init method failed!"};
};

struct SystemControlRow : Row<SystemControl, SYSTEM_CONTROL> {
    static constexpr const char* Name = "SystemControl";
    static inline const std::vector<std::string> Refusals = {};
};

struct SystemMonitorRow : Row<SystemMonitor, SYSTEM_MONITOR> {
    static constexpr const char* Name = "SystemMonitor";
    static constexpr bool NullDataResult = true;
    static constexpr const char* Section = "SYSTEM_MONITOR_INFO";
    static inline const std::vector<std::string> Refusals = {
        "SystemMonitor::MEASUREMENT_DATA_MESSAGE registration failed!",
        "SystemMonitor::REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE registration failed!",
        "SystemMonitor::ACK_TIMER_EXPIRED_DATA_MESSAGE registration failed!",
        "SystemMonitor::PERIODIC_HARDWARE_TEST_DATA_MESSAGE registration failed!",
        "SystemMonitor::REMOTE_INDICATOR_TEST_MESSAGE registration failed!"};
    static inline const std::vector<std::string> MissingSectionErrors = {};
};

struct TestInterfaceRow : Row<TestInterface, TEST_INTERFACE> {
    static constexpr const char* Name = "TestInterface";
    static inline const std::vector<std::string> Refusals = {
        "TestInterface::DoRegistration  Unable to register data message \"MEASUREMENT_DATA_MESSAGE\"",
        "TestInterface::DoRegistration  Unable to register data message \"TEST_COMMAND_DATA_MESSAGE\"",
        "TestInterface::DoRegistration  Unable to register data message \"ADC_STATUS_MESSAGE\"",
        "TestInterface::DoRegistration  Unable to register message TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE",
        "MeasurementEngine::DoRegistration  Unable to register message TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE",
        "MeasurementEngine::DoRegistration  Unable to register message TEST_PWM_DATA_MESSAGE"};
};

struct UserInterfaceDataControlRow : Row<UserInterfaceDataControl, USER_INTERFACE_DATA_CONTROL> {
    static constexpr const char* Name = "UserInterfaceDataControl";
    static inline const std::vector<std::string> Refusals = {
        "UserInterfaceDataControl::DoRegistration :: Unable to register reception of MEASUREMENT_DATA_MESSAGE "
        "message"};
};

using AllRows = testing::Types<DeviceMonitorRow, LoggingControlRow, MeasurementEngineRow, MessagingControlRow,
                               RemoteIndicatorControlRow, SystemControlRow, SystemMonitorRow, TestInterfaceRow,
                               UserInterfaceDataControlRow>;
using RowsWithSection = testing::Types<LoggingControlRow, RemoteIndicatorControlRow, SystemMonitorRow>;

struct RowNames {
    template <typename AnyRow>
    static std::string GetName(int /*index*/) {
        return AnyRow::Name;  // ControllerNames is not initialized yet
    }
};

// A controller whose thread has run its Init and has ended, so that the test calls it alone.
template <typename AnyRow>
class Controllers : public ControllerOnBoard<typename AnyRow::Controller, AnyRow::Type> {
protected:
    Controllers() {
        this->configuration.Set("LoggingLevel", "DEBUG_LOG_LEVEL");
        this->LoadSettings();
        // SystemControl reads the file itself, and ends without it before it creates the other controllers.
        std::filesystem::remove(this->Folder() + "/usr/share/vorn/bin/configuration/analyzer.conf.xml");
        for (AbsentController& origin : m_origins) {
            MessageBase::GetMessagingControl()->RegisterCommand(&origin, KILLING_SYSTEM);
        }
        this->Launch();
        this->End();
    }

    ~Controllers() override { this->EndGeneration(); }

    // As each controller gets it from the router.
    std::unique_ptr<CommandMessage> Routed(CommandType command) { return m_catcher.Routed(command); }

private:
    CapturingController m_catcher{"Catcher"};
    // The origins of some lines.
    AbsentController m_origins[2] = {AbsentController(MEASUREMENT_ENGINE), AbsentController(REMOTE_INDICATOR_CONTROL)};
};

template <typename AnyRow>
class ControllersWithSection : public ControllerOnBoard<typename AnyRow::Controller, AnyRow::Type> {};

}  // namespace

TYPED_TEST_SUITE(Controllers, AllRows, RowNames);
TYPED_TEST_SUITE(ControllersWithSection, RowsWithSection, RowNames);

TYPED_TEST(Controllers, has_its_name_and_logs_its_start) {
    EXPECT_EQ(this->Get().GetThreadName(), TypeParam::Name);
    this->WaitForLine(std::string("Initializing Thread for - ") + TypeParam::Name);
    this->WaitForLine(std::string("Changing to INITIALIZING_STATE State for - ") + TypeParam::Name);
}

TYPED_TEST(Controllers, follows_the_four_state_commands) {
    for (const auto& [command, state] : {std::pair(MOVE_TO_IDLE, IDLE_STATE),
                                         {MOVE_TO_RUNNING, RUNNING_STATE},
                                         {MOVE_TO_SHUTDOWN, SHUTDOWN_STATE},
                                         {MOVE_TO_TEST, TEST_STATE}}) {
        EXPECT_TRUE(this->Get().ProcessCommandMessage(this->Routed(command).get()));
        EXPECT_EQ(this->Get().GetState(), state);
        this->WaitForLine("Changing to " + ThreadStateNames[state].Text() + " State for - " + TypeParam::Name);
    }
}

TYPED_TEST(Controllers, keeps_its_state_for_other_commands) {
    this->Get().SetState(SHUTDOWN_STATE);
    for (const CommandType command : {PRIME_SYSTEM, COLLECT_MEASUREMENT}) {
        EXPECT_TRUE(this->Get().ProcessCommandMessage(this->Routed(command).get()));
        EXPECT_EQ(this->Get().GetState(), SHUTDOWN_STATE);
    }
}

TYPED_TEST(Controllers, returns_false_for_a_null_command) {
    EXPECT_FALSE(this->Get().ProcessCommandMessage(nullptr));
    EXPECT_EQ(this->Get().ProcessDataMessage(nullptr), TypeParam::NullDataResult);
}

TYPED_TEST(Controllers, logs_a_time_out_and_continues) {
    EXPECT_TRUE(this->Get().ProcessTimeOut());
    this->WaitForLine(std::string("Processing TimeOut for - ") + TypeParam::Name);
}

// The router refuses a second registration.
TYPED_TEST(Controllers, logs_each_refused_registration) {
    EXPECT_EQ(this->Get().DoRegistration(), TypeParam::Refusals.empty());
    std::vector<std::string> refusals;
    for (const std::string& line : this->Errors()) {
        if (line.find("egist") != std::string::npos) {
            refusals.push_back(line);
        }
    }
    EXPECT_THAT(refusals, ElementsAreArray(TypeParam::Refusals));
}

TYPED_TEST(ControllersWithSection, end_without_their_section) {
    this->configuration.RemoveSection(TypeParam::Section);
    this->LoadSettings();
    this->LaunchAndExpectEnd();
    EXPECT_EQ(this->Errors(), TypeParam::MissingSectionErrors);
}

TYPED_TEST(ControllersWithSection, end_without_settings) {
    this->LaunchAndExpectEnd();
    EXPECT_EQ(this->Errors(), TypeParam::MissingSectionErrors);
}
