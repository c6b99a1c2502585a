#include "System/RemoteIndicatorControl/RemoteIndicatorControl.h"

#include <algorithm>
#include <iterator>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/RemoteIndicatorAudioControlMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"
#include "System/Messages/RemoteIndicatorTestMessage.h"

namespace {

constexpr std::int32_t NoColor = -1;
constexpr std::int32_t StatusCount = 4;

// The ColorCode of a pair of statuses.
constexpr std::int32_t ColorTable[StatusCount][StatusCount] = {
    //      water 0        1        2        3
    /* analyzer 0 */ {0, NoColor, NoColor, NoColor},
    /* analyzer 1 */ {NoColor, 1, 2, 3},
    /* analyzer 2 */ {NoColor, 4, 5, 6},
    /* analyzer 3 */ {9, 7, 8, NoColor},
};

constexpr DataMessageType Subscriptions[] = {
    REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE,
    REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE,
    REMOTE_INDICATOR_TEST_MESSAGE,
    REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE,
};

constexpr std::int32_t GapOfNamedFile = 1000;  // microseconds

bool IsStatus(std::int32_t status) { return status >= 0 && status < StatusCount; }

// Messages may hold any number: a pair outside the table has no color.
std::int32_t ColorOf(std::int32_t analyzerStatus, std::int32_t waterStatus) {
    return IsStatus(analyzerStatus) && IsStatus(waterStatus) ? ColorTable[analyzerStatus][waterStatus] : NoColor;
}

bool ReadSettings(RemoteIndicatorSettings& settings) {
    const SystemConfigurationFile* file = SingletonBase::GetSystemConfiguration();
    const ConfigurationBase* section = file == nullptr ? nullptr : file->GetRemoteIndicatorControlConfigInfo();
    if (section == nullptr) {
        return false;
    }
    settings.alertFile = section->RequireValue("AlertFileName").Text();
    settings.alarmFile = section->RequireValue("AlarmFileName").Text();
    settings.alertGap = section->RequireValue("AlertFileGapBetweenPlay").ToInteger();
    settings.alarmGap = section->RequireValue("AlarmFileGapBetweenPlay").ToInteger();
    settings.loopCurrentSenseResistance = section->RequireValue("LoopCurrentSenseResistance").ToFloat();
    settings.loopVoltageAmpGain = section->RequireValue("LoopVoltageAmpGain").ToFloat();
    settings.blueLEDForwardVoltageDrop = section->RequireValue("BlueLEDForwardVoltageDrop").ToFloat();
    settings.cableResistancePerFoot = section->RequireValue("CableResistancePerFoot").ToFloat();
    return true;
}

}  // namespace

RemoteIndicatorControl::RemoteIndicatorControl() { StartAs(ControllerNames[REMOTE_INDICATOR_CONTROL]); }

bool RemoteIndicatorControl::Init() {
    if (InitController() && DoRegistration() && MakeDevice()) {
        return true;
    }
    Log("RemoteIndicatorControl - Init method failed!", ERROR_LOG_LEVEL);
    return false;
}

bool RemoteIndicatorControl::MakeDevice() {
    m_device = TryMake<RemoteIndicator>();
    RemoteIndicatorSettings settings;
    return m_device != nullptr && ReadSettings(settings) && m_device->Init(settings) &&
           m_device->SetLEDColors(RemoteIndicator::BlueOnBothSides);
}

bool RemoteIndicatorControl::DoRegistration() {
    const bool registered = std::all_of(std::begin(Subscriptions), std::end(Subscriptions),
                                        [this](DataMessageType type) { return RegisterForDataMessage(type); });
    if (!registered) {
        Log("RemoteIndicatorControl::DoRegistration failed!", ERROR_LOG_LEVEL);
    }
    return registered;
}

// This controller receives its own replies too, since it subscribed to their type; it handles only requests.
bool RemoteIndicatorControl::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    const DataMessageType type = message->GetDataType();
    if (std::find(std::begin(Subscriptions), std::end(Subscriptions), type) == std::end(Subscriptions)) {
        Log("RemoteIndicatorControl - Invalid data message!", ERROR_LOG_LEVEL);
        return true;
    }
    if (message->GetSubType() != REQUEST_SUB_TYPE) {
        return true;
    }
    switch (type) {
        case REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE:
            SetColors(static_cast<const RemoteIndicatorControlMessage&>(*message));
            Acknowledge();  // the request was received, even if its colors were invalid
            break;
        case REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE:
            CalculateCableLength();
            break;
        case REMOTE_INDICATOR_TEST_MESSAGE:
            Test(static_cast<const RemoteIndicatorTestMessage&>(*message));
            break;
        case REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE:
            ControlAudio(static_cast<const RemoteIndicatorAudioControlMessage&>(*message));
            break;
        default:
            break;
    }
    return true;
}

void RemoteIndicatorControl::SetColors(const RemoteIndicatorControlMessage& message) {
    std::int32_t analyzerStatus = m_analyzerStatus;
    std::int32_t waterStatus = m_waterStatus;
    const std::int32_t select = message.GetStatusSelect();
    if (select == BOTH_STATUSES || select == ANALYZER_STATUS) {
        analyzerStatus = message.GetAnalyzerStatus();
    }
    if (select != ANALYZER_STATUS) {
        waterStatus = message.GetWaterStatus();
    }
    const std::int32_t color = ColorOf(analyzerStatus, waterStatus);
    if (color == NoColor) {
        Log("RemoteIndicatorControl - Invalid color status!", ERROR_LOG_LEVEL);
        return;
    }
    m_analyzerStatus = analyzerStatus;
    m_waterStatus = waterStatus;
    m_device->SetLEDColors(static_cast<std::uint32_t>(color));
}

void RemoteIndicatorControl::Acknowledge() {
    auto acknowledgement = TryMake<RemoteIndicatorControlMessage>();
    if (acknowledgement == nullptr) {
        return;
    }
    acknowledgement->SetSubType(ACKNOWLEDGE_SUB_TYPE);
    MessageController::SendMessage(std::move(acknowledgement), REMOTE_INDICATOR_CONTROL);
}

// The length is not reported; only the measurement itself can be observed.
void RemoteIndicatorControl::CalculateCableLength() {
    float feet = 0.0F;
    m_device->CalculateCableLength(feet);
}

// The reply does not identify its test: its test id stays 0.
void RemoteIndicatorControl::Test(const RemoteIndicatorTestMessage& message) {
    const std::int32_t id = message.GetTestId();
    const std::int32_t led = id >= BLUE_ANALYZER_LED_TEST && id <= RED_WATER_LED_TEST ? id - BLUE_ANALYZER_LED_TEST : 0;
    const bool good = id == WHOLE_INDICATOR_TEST ? m_device->IndicatorIsGood()  //
                                                 : m_device->LEDIsGood(static_cast<std::uint32_t>(led));
    auto reply = TryMake<RemoteIndicatorTestMessage>();
    if (reply == nullptr) {
        return;
    }
    reply->SetSubType(RESPONSE_SUB_TYPE);
    reply->SetVerdict(good ? 1 : 0);
    MessageController::SendMessage(std::move(reply), REMOTE_INDICATOR_CONTROL);
}

void RemoteIndicatorControl::ControlAudio(const RemoteIndicatorAudioControlMessage& message) {
    switch (message.GetAction()) {
        case STOP_AUDIO:
            m_device->Stop();
            break;
        case PLAY_AUDIO:
            m_device->Stop();
            m_device->PlayFile(message.GetFileName().Text(), GapOfNamedFile);
            break;
        case RESTART_AUDIO:
            m_device->RestartPlay();
            break;
        default:
            break;
    }
}
