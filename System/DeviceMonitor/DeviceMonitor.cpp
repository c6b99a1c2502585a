#include "System/DeviceMonitor/DeviceMonitor.h"

#include "Drivers/Print.h"
#include "Frameworks/Configuration/SystemOperationFile.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"

std::atomic<bool> cardChanged{false};

namespace {

constexpr std::int32_t TickMilliseconds = 1000;
constexpr std::uint32_t TwoHours = 7200000;  // milliseconds
constexpr double HoursCounted = 2.0;

constexpr const char* CycleCounters[] = {
    "TubingRunCycles",
    "ColorimeterRunCycles",
    "SampleConditioningRunCycles",
    "ReagentDeliveryRunCycles",
};

constexpr const char* HourCounters[] = {
    "ElectronicsRunHours",
    "RemoteIndicatorRunHours",
};

// Whether the card was present at the last notice. Like the mark below, it outlasts a reset.
std::atomic<bool> cardPresent{false};

// The card that a notice checks.
std::atomic<const SDCard*> watchedCard{nullptr};

// When the hours are counted next. The first time is two hours after the first call.
TimeInfo& TwoHourMark() {
    static TimeInfo mark(TwoHours);
    return mark;
}

// In memory only; the files are written with the hours.
void CountCycle() {
    SystemOperationFile* file = SystemOperationFile::GetInstance();
    if (file == nullptr) {
        return;
    }
    for (const char* counter : CycleCounters) {
        file->AddToUnsignedCounter(counter, 1);
    }
}

void CountHours() {
    SystemOperationFile* file = SystemOperationFile::GetInstance();
    if (file == nullptr) {
        return;
    }
    for (const char* counter : HourCounters) {
        file->AddToFloatCounter(counter, HoursCounted);
    }
    file->Save();
}

void CheckTwoHours() {
    TimeInfo& mark = TwoHourMark();
    TimeInfo now;
    if (now > mark) {
        CountHours();
        now.AddMilliSeconds(TwoHours);
        mark = now;
    }
}

}  // namespace

DeviceMonitor::DeviceMonitor() {
    watchedCard = &m_card;
    StartAs(ControllerNames[DEVICE_MONITOR]);
}

DeviceMonitor::~DeviceMonitor() { watchedCard = nullptr; }

bool DeviceMonitor::Init() { return InitController() && DoRegistration(); }

bool DeviceMonitor::DoRegistration() {
    if (RegisterForDataMessage(PERIODIC_HARDWARE_TEST_DATA_MESSAGE)) {
        return true;
    }
    // The origin is not this controller: readers of existing logs expect the remote indicator's.
    return ReportError("DeviceMonitor::DoRegistration - PERIODIC_HARDWARE_TEST_DATA_MESSAGE failed!",
                       REMOTE_INDICATOR_CONTROL);
}

bool DeviceMonitor::ProcessCommandMessage(CommandMessage* message) {
    if (!ThreadControl::ProcessCommandMessage(message)) {
        return false;
    }
    const CommandType command = message->GetCommandType();
    if (command == MOVE_TO_RUNNING) {
        SetTimeOut(TickMilliseconds);  // and for every later state
    } else if (command == COLLECT_MEASUREMENT) {
        CountCycle();
    }
    return true;
}

bool DeviceMonitor::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr || message->GetDataType() != PERIODIC_HARDWARE_TEST_DATA_MESSAGE ||
        message->GetSubType() != REQUEST_SUB_TYPE) {
        return true;
    }
    const bool isPassed = m_tests.Run(static_cast<PeriodicHardwareTestMessage*>(message)->GetTestSelector());
    auto reply = std::make_unique<PeriodicHardwareTestMessage>();
    reply->SetSubType(RESPONSE_SUB_TYPE);
    reply->SetVerdict(isPassed ? 1 : 0);
    MessageController::SendMessage(std::move(reply), DEVICE_MONITOR);
    return true;
}

bool DeviceMonitor::ProcessTimeOut() {
    ThreadControl::ProcessTimeOut();
    CheckTwoHours();
    return true;
}

void DeviceMonitor::NoticeCard(int /*signal*/, siginfo_t* /*information*/, void* /*context*/) {
    const SDCard* card = watchedCard;
    const bool isPresent = card != nullptr && card->IsPresent();
    if (cardPresent.exchange(isPresent) != isPresent) {
        PrintOutput(isPresent ? "SD card inserted! " : "SD card removed !");
    }
    cardChanged = true;
}
