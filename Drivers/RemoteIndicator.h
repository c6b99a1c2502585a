// The unit at the end of a cable: a blue, an amber and a red LED for the analyzer, the same three for the water, and
// the sound that goes with their colors. It measures its LEDs and its cable through the multiplexer. A change of
// colors takes up to five seconds while a sound plays. Failures are logged under the id of the remote indicator's
// controller. One thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "Drivers/GpioPin.h"
#include "Drivers/RemoteIndicatorSettings.h"
#include "Drivers/Speaker.h"

class RemoteIndicator : public Speaker {
public:
    static constexpr std::uint32_t BlueOnBothSides = 1;  // ColorCode

    // Sets up the mixer and claims the six lines. If it fails, every later change of LEDs fails too.
    bool Init(const RemoteIndicatorSettings& settings);

    // A ColorCode, 0 to 9: the LEDs that it lights and its sound, over and over. Any other code fails, leaves the LEDs
    // as they are, and still stops the sound.
    bool SetLEDColors(std::uint32_t code);
    // That LED alone, 0 to 5: blue, amber, red of the analyzer, then of the water. Any other turns all off.
    bool SetSingleLEDColor(std::uint32_t led);

    // Feet of the cable, from the loop with both blue LEDs lit.
    bool CalculateCableLength(float& feet);
    // Whether the LED, lit alone, draws its current; an LED above 5 counts as 5. The colors are restored afterwards.
    bool LEDIsGood(std::uint32_t led);
    // Whether three or more of the six are good.
    bool IndicatorIsGood();

    // A file below the program directory, with its gap in microseconds. False for an empty name.
    bool PlayFile(const std::string& name, std::int32_t gap);
    // The sound of the current colors from its start; false if they have none.
    bool RestartPlay();

private:
    static constexpr int LineCount = 6;

    bool WriteLines(std::uint32_t lit);
    void ChooseSound(std::uint32_t code);
    bool ComputeCableLength(float& feet) const;

    bool m_valid = false;
    std::uint32_t m_code = 0;  // the last one set with success
    std::string m_file;        // of the current code; empty if it is silent
    std::int32_t m_gap = 0;    // microseconds
    RemoteIndicatorSettings m_settings;
    std::array<std::unique_ptr<GpioPin>, LineCount> m_lines;
};
