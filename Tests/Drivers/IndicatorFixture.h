// The remote indicator on the board, with its two sounds; its own output is kept out of the test's.
#pragma once

#include <memory>

#include "Drivers/RemoteIndicator.h"
#include "Tests/Drivers/DriverTest.h"
#include "Tests/Support/SoundClip.h"

using Log = std::vector<LogCall>;

inline LogCall Logged(const char* text) { return {text, ERROR_LOG_LEVEL, REMOTE_INDICATOR_CONTROL}; }

inline const LogCall ColorsFailed = Logged("RemoteIndicator::SetLEDColors Setting visual or audio failed!");
inline const LogCall SingleFailed = Logged("RemoteIndicator::SetLEDColors Setting single LED color failed!");

inline const std::string Pins = "/sys/class/gpio/";
inline const std::string Alert = "aplay -q /usr/share/vorn/bin/alert.wav";
inline const std::string Alarm = "aplay -q /usr/share/vorn/bin/alarm.wav";

// One letter a lit LED: of the analyzer in capitals, then of the water.
struct Lamp {
    int pin;  // of bank 3
    char letter;
};
inline constexpr Lamp Lamps[] = {{17, 'B'}, {16, 'A'}, {21, 'R'}, {18, 'b'}, {19, 'a'}, {20, 'r'}};

class IndicatorDriver : public DriverTest {
protected:
    IndicatorDriver() {
        LaySoundClip(Board().Folder(), "alert.wav", 1);
        LaySoundClip(Board().Folder(), "alarm.wav", 1);
        settings.alertFile = "alert.wav";
        settings.alarmFile = "alarm.wav";
        settings.alertGap = 3000000;
        settings.alarmGap = 1000000;
        settings.loopCurrentSenseResistance = 100.0F;
        settings.loopVoltageAmpGain = 3.0F;
        settings.blueLEDForwardVoltageDrop = 3.0F;
        settings.cableResistancePerFoot = 0.0625F;
        Board().SetIioScale("1.0");
    }

    ~IndicatorDriver() override {
        Quietly([this] { indicator.reset(); });
    }

    // Without the texts of player and pins.
    static void Quietly(const std::function<void()>& action) { PrintedBy(action); }

    void Init() {
        EXPECT_TRUE(indicator->Init(settings));
        TakeTrace();
        Board().ClearSoundCalls();
    }

    bool SetColors(std::uint32_t code) {
        bool result = false;
        Quietly([&] { result = indicator->SetLEDColors(code); });
        return result;
    }

    static std::string Lit() {
        std::string lit;
        for (const Lamp& lamp : Lamps) {
            lit += Board().Pin(3, lamp.pin).level ? std::string(1, lamp.letter) : "";
        }
        return lit;
    }

    static void WaitForSound(const std::string& call, std::size_t count = 1) {
        EXPECT_TRUE(Board().WaitUntil([&] {
            const Texts calls = Board().SoundCalls();
            return calls.size() >= count && calls.back() == call;
        })) << call;
    }

    // The written values of the six lines, in the order of writing.
    static Texts LineWrites() {
        Texts writes;
        for (const std::string& line : TakeTrace()) {
            if (line.rfind(Pins + "pioD", 0) == 0 && line.find("pioD10/") == std::string::npos &&
                line.find("/value=") != std::string::npos) {
                writes.push_back(line.substr(Pins.size()));
            }
        }
        return writes;
    }

    static Texts Writes(const char* values) {
        Texts writes;
        const char* const pins[] = {"pioD16", "pioD18", "pioD20", "pioD17", "pioD19", "pioD21"};
        for (std::size_t line = 0; line < 6; ++line) {
            writes.push_back(std::string(pins[line]) + "/value=" + values[line]);
        }
        return writes;
    }

    static void SetVolts(int channel, double volts) { Board().SetMultiplexerVolts(channel, volts); }

    // All LEDs sense that voltage.
    static void SetSense(double volts) {
        for (int channel = 1; channel <= 6; ++channel) {
            SetVolts(channel, volts);
        }
    }

    bool IsGood(std::uint32_t led) {
        bool good = false;
        Quietly([&] { good = indicator->LEDIsGood(led); });
        return good;
    }

    bool MeasureCable(float& feet) {
        bool measured = false;
        Quietly([&] { measured = indicator->CalculateCableLength(feet); });
        return measured;
    }

    RemoteIndicatorSettings settings;
    std::unique_ptr<RemoteIndicator> indicator = std::make_unique<RemoteIndicator>();
};
