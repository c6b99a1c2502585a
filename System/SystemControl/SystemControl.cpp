#include "System/SystemControl/SystemControl.h"

#include <unistd.h>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/DeviceMonitor/DeviceMonitor.h"
#include "System/LoggingControl/LoggingControl.h"
#include "System/MeasurementEngine/MeasurementEngine.h"
#include "System/RemoteIndicatorControl/RemoteIndicatorControl.h"
#include "System/SystemMonitor/SystemMonitor.h"
#include "System/TestInterface/TestInterface.h"
#include "System/UserInterfaceDataControl/UserInterfaceDataControl.h"

namespace {

constexpr char ConfigurationPath[] = "/usr/share/vorn/bin/configuration/analyzer.conf.xml";

constexpr unsigned SecondsBeforePriming = 5;
constexpr unsigned SecondsOfPriming = 60;
constexpr unsigned SecondsForLastMessages = 1;

template <typename Controller>
std::unique_ptr<ThreadControl> Make() {
    return std::make_unique<Controller>();
}

struct ControllerRow {
    std::unique_ptr<ThreadControl> (*create)();
    const char* failure;  // the thread's name follows
};

// In order of creation, after MessagingControl. Each controller's constructor starts its thread.
constexpr ControllerRow Controllers[] = {
    {Make<LoggingControl>, "Unable to Create LoggingControl - "},
    {Make<DeviceMonitor>, "Unable to Create DeviceMonitor - "},
    {Make<UserInterfaceDataControl>, "Unable to Create UserInterfaceDataControl - "},
    {Make<SystemMonitor>, "Unable to Create SystemMonitor - "},
    {Make<RemoteIndicatorControl>, "Unable to Create RemoteIndicatorControl - "},
    {Make<TestInterface>, "Unable to Create TestInterface - "},
    {Make<MeasurementEngine>, "Unable to Create MeasurementEngine - "},
};

constexpr std::size_t ControllersToCreate = 1 + std::size(Controllers);

}  // namespace

SystemControl::SystemControl() { StartAs(ControllerNames[SYSTEM_CONTROL]); }

bool SystemControl::Init() {
    if (!InitController() || !LoadSystemConfiguration() || !ReadConfiguration() ||
        SingletonBase::GetSystemConfiguration() == nullptr) {
        return false;
    }
    const bool result = CreateThreads();
    DoRegistration();
    if (!m_controllers.empty()) {
        SendCommand(MOVE_TO_IDLE);
        if (m_autoStart) {
            SetTimeOut(m_autoStartDelay);
        }
    }
    return result;
}

bool SystemControl::LoadSystemConfiguration() {
    auto file = std::make_unique<SystemConfigurationFile>();
    return file->Load(ConfigurationPath) && SingletonBase::SetSystemConfiguration(std::move(file)) &&
           SingletonBase::GetSystemConfiguration()->GetXML();
}

bool SystemControl::LoadUserConfiguration() {
    auto file = std::make_unique<UserConfigurationFile>();
    return file->Load("") && SingletonBase::SetUserConfiguration(std::move(file)) &&
           SingletonBase::GetUserConfiguration()->GetXML();
}

bool SystemControl::ReadConfiguration() {
    const SystemControlConfigInfo* section = SingletonBase::GetSystemConfiguration()->GetSystemControlConfigInfo();
    if (section == nullptr) {
        Log("Unable to configuration information for - " + GetThreadName(), DEBUG_LOG_LEVEL);
        return false;
    }
    m_defaultMeasurementTimeOut = section->RequireValue("DefaultMeasurementTimeout").ToUnsigned();
    m_userConfigurationFile = section->RequireValue("UserConfigFileLocation");
    m_autoStart = section->RequireValue("AutoStartMeasurement").ToBool();
    m_autoStartDelay = static_cast<std::int32_t>(section->RequireValue("AutoStartDelay").ToUnsigned());
    return true;
}

bool SystemControl::CreateThreads() {
    if (!CreateMessagingControl()) {
        return false;
    }
    for (const ControllerRow& row : Controllers) {
        if (!AddThread(row.create())) {
            Log(row.failure + GetThreadName(), DEBUG_LOG_LEVEL);
            return false;
        }
    }
    if (m_controllers.size() != ControllersToCreate) {
        Log("Improper Number of Threads Created - " + GetThreadName(), DEBUG_LOG_LEVEL);
        return false;
    }
    return true;
}

// The router is made known before it is added, so that every controller after it finds it.
bool SystemControl::CreateMessagingControl() {
    auto router = std::make_unique<MessagingControl>();
    if (!MessageBase::SetMessagingControl(router.get())) {
        Log("Unable to Create MessagingControl - " + GetThreadName(), DEBUG_LOG_LEVEL);
        return false;
    }
    if (!AddThread(std::move(router))) {
        Log("Unable to Assign MessagingControl - " + GetThreadName(), DEBUG_LOG_LEVEL);
        return false;
    }
    return true;
}

bool SystemControl::AddThread(std::unique_ptr<ThreadControl> thread) {
    if (thread == nullptr) {
        return false;
    }
    m_controllers.push_back(std::move(thread));
    Log("Thread Created - " + m_controllers.back()->GetThreadName(), DEBUG_LOG_LEVEL);
    return true;
}

bool SystemControl::DoRegistration() {
    RegisterAllCommands(this);
    for (const std::unique_ptr<ThreadControl>& controller : m_controllers) {
        RegisterAllCommands(controller.get());
    }
    RegisterForDataMessage(MEASUREMENT_DATA_MESSAGE);
    return true;
}

void SystemControl::RegisterAllCommands(ThreadControl* thread) {
    if (thread == nullptr) {
        return;
    }
    Log("Registering All Commands for - " + thread->GetThreadName(), DEBUG_LOG_LEVEL);
    for (std::int32_t command = 0; command < CommandCount; ++command) {
        thread->RegisterForCommand(static_cast<CommandType>(command));
    }
}

bool SystemControl::ProcessCommandMessage(CommandMessage* message) {
    if (!ThreadControl::ProcessCommandMessage(message)) {
        return false;
    }
    switch (message->GetCommandType()) {
        case MOVE_TO_RUNNING:
            SendCommand(COLLECT_MEASUREMENT);
            break;
        case MOVE_TO_SHUTDOWN:
        case MOVE_TO_TEST:
            SetTimeOut(-1);
            break;
        case RESET_SYSTEM:
            SetState(RESETTING_SYSTEM_STATE);
            SetTimeOut(-1);
            ResetSystem();
            break;
        default:
            break;
    }
    return true;
}

// Each result requests the next one, so that the measurement continues.
bool SystemControl::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    if (message->GetDataType() == MEASUREMENT_DATA_MESSAGE && GetState() == RUNNING_STATE) {
        SendCommand(COLLECT_MEASUREMENT);
    }
    return true;
}

// The automatic start. The sleeps block this thread on purpose: it handles its own MOVE_TO_RUNNING after them and then
// sends one more COLLECT_MEASUREMENT.
bool SystemControl::ProcessTimeOut() {
    ThreadControl::ProcessTimeOut();
    if (!m_autoStart || GetState() != IDLE_STATE) {
        return true;
    }
    SendCommand(MOVE_TO_RUNNING);
    sleep(SecondsBeforePriming);
    SendCommand(PRIME_SYSTEM);
    sleep(SecondsOfPriming);
    SendCommand(COLLECT_MEASUREMENT);
    m_autoStart = false;
    SetTimeOut(-1);
    return true;
}

// The router outlives the others by a second and logging the router by another, so that the last messages pass.
void SystemControl::ResetSystem() {
    Log("Resetting the System from - " + GetThreadName(), DEBUG_LOG_LEVEL);
    ThreadControl* router = nullptr;
    ThreadControl* logging = nullptr;
    for (auto controller = m_controllers.rbegin(); controller != m_controllers.rend(); ++controller) {
        if ((*controller)->GetThreadName() == ControllerNames[LOGGING_CONTROL]) {
            logging = controller->get();
        } else if (controller->get() == MessageBase::GetMessagingControl()) {
            router = controller->get();
            MessageBase::SetMessagingControl(nullptr);
        } else {
            (*controller)->Kill();
        }
    }
    for (ThreadControl* last : {router, logging}) {
        if (last != nullptr) {
            sleep(SecondsForLastMessages);
            last->Kill();
        }
    }
    Kill();
}

std::int32_t SystemControl::Exit() {
    JoinThreads();
    SingletonBase::SetSystemConfiguration(nullptr);
    return ThreadControl::Exit();
}

// All threads have ended before the first object is deleted: until then one may still send to another.
void SystemControl::JoinThreads() {
    for (auto controller = m_controllers.rbegin(); controller != m_controllers.rend(); ++controller) {
        Log("Ending Thread for - " + (*controller)->GetThreadName(), DEBUG_LOG_LEVEL);
        JoinThread(**controller, "thread_join error returned", ERROR_LOG_LEVEL, SYSTEM_CONTROL);
    }
    while (!m_controllers.empty()) {
        m_controllers.pop_back();
    }
}
