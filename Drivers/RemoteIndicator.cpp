#include "Drivers/RemoteIndicator.h"

#include <algorithm>
#include <iterator>

#include "Drivers/Board.h"
#include "Drivers/Demultiplexer.h"
#include "Frameworks/Utilities/Report.h"

namespace {

constexpr const char* SoundDirectory = "/usr/share/vorn/bin/";
constexpr std::int32_t Volume = 95;  // percent

constexpr float GoodLEDVolts = 0.5F;  // what a lit LED has to exceed
constexpr int GoodLEDsOfGoodIndicator = 3;

// The LEDs as a set: the bit of an LED's number.
enum LED : std::uint32_t {
    NO_LED = 0,
    BLUE_ANALYZER_LED = 1 << 0,
    AMBER_ANALYZER_LED = 1 << 1,
    RED_ANALYZER_LED = 1 << 2,
    BLUE_WATER_LED = 1 << 3,
    AMBER_WATER_LED = 1 << 4,
    RED_WATER_LED = 1 << 5,
    ALL_ANALYZER_LEDS = BLUE_ANALYZER_LED | AMBER_ANALYZER_LED | RED_ANALYZER_LED,
    ALL_WATER_LEDS = BLUE_WATER_LED | AMBER_WATER_LED | RED_WATER_LED,
};

// The multiplexer channel with an LED's sense voltage, by the LED's number.
constexpr std::uint32_t SenseChannels[] = {
    OnBoard::BlueAnalyzerSenseChannel,   //
    OnBoard::AmberAnalyzerSenseChannel,  //
    OnBoard::RedAnalyzerSenseChannel,    //
    OnBoard::BlueWaterSenseChannel,      //
    OnBoard::AmberWaterSenseChannel,     //
    OnBoard::RedWaterSenseChannel,       //
};

// In order of creation.
constexpr PinAddress Lines[] = {
    OnBoard::AmberAnalyzerLine,  //
    OnBoard::BlueWaterLine,      //
    OnBoard::RedWaterLine,       //
    OnBoard::BlueAnalyzerLine,   //
    OnBoard::AmberWaterLine,     //
    OnBoard::RedAnalyzerLine,    //
};

// The LED of each line. A high line lights it.
constexpr LED LineLEDs[] = {
    AMBER_ANALYZER_LED,  //
    BLUE_WATER_LED,      //
    RED_WATER_LED,       //
    BLUE_ANALYZER_LED,   //
    AMBER_WATER_LED,     //
    RED_ANALYZER_LED,    //
};

enum Sound { NO_SOUND, ALERT_SOUND, ALARM_SOUND };

struct ColorRow {
    LED analyzer;
    LED water;
    Sound sound;
};

// By ColorCode.
constexpr ColorRow ColorRows[] = {
    {ALL_ANALYZER_LEDS, ALL_WATER_LEDS, NO_SOUND},       // 0
    {BLUE_ANALYZER_LED, BLUE_WATER_LED, NO_SOUND},       // 1
    {BLUE_ANALYZER_LED, AMBER_WATER_LED, ALERT_SOUND},   // 2
    {BLUE_ANALYZER_LED, RED_WATER_LED, ALARM_SOUND},     // 3
    {AMBER_ANALYZER_LED, BLUE_WATER_LED, ALERT_SOUND},   // 4
    {AMBER_ANALYZER_LED, AMBER_WATER_LED, ALERT_SOUND},  // 5
    {AMBER_ANALYZER_LED, RED_WATER_LED, ALARM_SOUND},    // 6
    {RED_ANALYZER_LED, BLUE_WATER_LED, NO_SOUND},        // 7
    {RED_ANALYZER_LED, AMBER_WATER_LED, NO_SOUND},       // 8
    {RED_ANALYZER_LED, NO_LED, ALERT_SOUND},             // 9
};

constexpr std::uint32_t LEDCount = std::size(SenseChannels);
constexpr std::uint32_t ColorCount = std::size(ColorRows);

bool MeasureLED(std::uint32_t led, float& volts) {
    Demultiplexer demultiplexer;
    if (!demultiplexer.Init(OnBoard::MultiplexerLines)) {
        return ReportError("RemoteIndicator::LEDIsGood - demux could not be initialized!", REMOTE_INDICATOR_CONTROL);
    }
    return demultiplexer.ReadVoltage(SenseChannels[std::min(led, LEDCount - 1)], volts) ||
           ReportError("RemoteIndicator::LEDIsGood - demux voltage could not be read!", REMOTE_INDICATOR_CONTROL);
}

bool MeasureLoop(float& senseVolts, float& loopVolts) {
    Demultiplexer demultiplexer;
    return demultiplexer.Init(OnBoard::MultiplexerLines) &&
           demultiplexer.ReadVoltage(OnBoard::LoopCurrentChannel, senseVolts) &&
           demultiplexer.ReadVoltage(OnBoard::LoopVoltageChannel, loopVolts);
}

}  // namespace

bool RemoteIndicator::Init(const RemoteIndicatorSettings& settings) {
    m_settings = settings;
    m_valid = SetUnmuted(true) && SetVolume(Volume, Volume) && ClaimLowOutputs(Lines, m_lines);
    return m_valid || ReportError("RemoteIndicator::Init Configuring visual or audio failed", REMOTE_INDICATOR_CONTROL);
}

bool RemoteIndicator::WriteLines(std::uint32_t lit) {
    for (std::size_t line = 0; line < LineCount; ++line) {
        if (!m_lines[line]->Write((lit & LineLEDs[line]) != 0 ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL)) {
            return false;
        }
    }
    return true;
}

// Silence comes first, whatever the code: so even a bad one ends an alarm.
bool RemoteIndicator::SetLEDColors(std::uint32_t code) {
    m_file.clear();
    Stop();
    bool set = false;
    if (code < ColorCount) {
        ChooseSound(code);
        set = m_valid && WriteLines(ColorRows[code].analyzer | ColorRows[code].water);
    }
    if (set) {
        m_code = code;
        set = m_file.empty() || PlayFile(m_file, m_gap);
    }
    return set ||
           ReportError("RemoteIndicator::SetLEDColors Setting visual or audio failed!", REMOTE_INDICATOR_CONTROL);
}

void RemoteIndicator::ChooseSound(std::uint32_t code) {
    switch (ColorRows[code].sound) {
        case ALERT_SOUND:
            m_file = m_settings.alertFile;
            m_gap = m_settings.alertGap;
            break;
        case ALARM_SOUND:
            m_file = m_settings.alarmFile;
            m_gap = m_settings.alarmGap;
            break;
        default:
            break;
    }
}

bool RemoteIndicator::SetSingleLEDColor(std::uint32_t led) {
    return (m_valid && WriteLines(led < LEDCount ? 1U << led : NO_LED)) ||
           ReportError("RemoteIndicator::SetLEDColors Setting single LED color failed!", REMOTE_INDICATOR_CONTROL);
}

// If the LED cannot be lit alone, the LEDs stay as that attempt left them.
bool RemoteIndicator::LEDIsGood(std::uint32_t led) {
    if (!SetSingleLEDColor(led)) {
        return ReportError("RemoteIndicator::LEDIsGood - color pair could not be set!", REMOTE_INDICATOR_CONTROL);
    }
    float volts = 0.0F;
    const bool good = MeasureLED(led, volts) && volts > GoodLEDVolts;
    const bool restored = SetLEDColors(m_code);
    return good && restored;
}

bool RemoteIndicator::IndicatorIsGood() {
    int good = 0;
    for (std::uint32_t led = 0; led < LEDCount; ++led) {
        good += LEDIsGood(led) ? 1 : 0;
    }
    return good >= GoodLEDsOfGoodIndicator;
}

bool RemoteIndicator::CalculateCableLength(float& feet) {
    const std::uint32_t before = m_code;
    const bool computed = SetLEDColors(BlueOnBothSides) && ComputeCableLength(feet);
    const bool restored = SetLEDColors(before);
    return (computed && restored) ||
           ReportError("RemoteIndicator::CalculateCableLength failed!", REMOTE_INDICATOR_CONTROL);
}

// Without any current, as with a cable that is cut, the length is infinite or no number, and no failure.
bool RemoteIndicator::ComputeCableLength(float& feet) const {
    float senseVolts = 0.0F;
    float loopVolts = 0.0F;
    if (!MeasureLoop(senseVolts, loopVolts) || m_settings.cableResistancePerFoot == 0.0F) {
        return false;
    }
    const float current = senseVolts / m_settings.loopCurrentSenseResistance;
    const float resistance =
        (m_settings.loopVoltageAmpGain * loopVolts - m_settings.blueLEDForwardVoltageDrop) / current;
    feet = resistance / m_settings.cableResistancePerFoot;
    return true;
}

bool RemoteIndicator::PlayFile(const std::string& name, std::int32_t gap) {
    return !name.empty() && Play(SoundDirectory + name, gap);
}

bool RemoteIndicator::RestartPlay() {
    Stop();
    return PlayFile(m_file, m_gap);
}
