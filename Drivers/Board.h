// Which line, channel, device and command of the board serves what, each fact here and nowhere else. A line is a bank
// and a pin; a PWM channel is one of chip 0; a multiplexer channel is one of the sixteen test points.
#pragma once

#include <array>
#include <cstdint>

#include "Drivers/PinAddress.h"

namespace OnBoard {

// Reagent pump.
inline constexpr std::uint8_t PumpPwm = 1;
inline constexpr PinAddress PumpEnable{0, 2};                                           // low enables the chip
inline constexpr PinAddress PumpDirection{0, 3};                                        // low is the pump's direction
inline constexpr std::array<PinAddress, 3> PumpCurrentLimit{{{0, 4}, {0, 5}, {0, 6}}};  // bit 0 first
inline constexpr std::uint32_t PumpInitialLimit = 7;
inline constexpr PinAddress PumpHomeFlag{1, 18};

// Stir bar.
inline constexpr std::uint8_t StirPwm = 2;
inline constexpr PinAddress StirEnable{1, 15};  // low enables the chip

// Sample valve.
inline constexpr std::uint8_t ValvePwm = 3;
inline constexpr std::uint16_t ValveFrequency = 1000;  // hertz

// External 24-bit converter.
inline constexpr const char* ConverterDevice = "/dev/spidev32765.1";
inline constexpr PinAddress ConverterChipSelect{0, 0};
inline constexpr PinAddress ConverterEnd{0, 21};            // low when the conversion has ended
inline constexpr std::uint32_t ConverterCommand = 0x1410;   // for input pair 0
inline constexpr std::uint32_t ConverterTemperature = 0x8;  // added for the internal temperature
inline constexpr std::uint32_t ConverterPairFactor = 32;    // times the input pair, added
inline constexpr std::uint32_t ConverterCommandShift = 3;   // to the left, before the command is sent

// The processor's own converter, fed by the multiplexers.
inline constexpr std::array<PinAddress, 4> MultiplexerLines{{{2, 27}, {2, 28}, {2, 31}, {3, 10}}};  // A, B, C, enable
inline constexpr std::uint32_t MultiplexerInput = 6;

// Multiplexer channels.
inline constexpr std::uint32_t LoopVoltageChannel = 0;
inline constexpr std::uint32_t LoopCurrentChannel = 2;
inline constexpr std::uint32_t BlueAnalyzerSenseChannel = 2;
inline constexpr std::uint32_t AmberAnalyzerSenseChannel = 1;
inline constexpr std::uint32_t RedAnalyzerSenseChannel = 6;
inline constexpr std::uint32_t BlueWaterSenseChannel = 3;
inline constexpr std::uint32_t AmberWaterSenseChannel = 4;
inline constexpr std::uint32_t RedWaterSenseChannel = 5;
inline constexpr std::uint32_t SupplyLoadChannel = 7;  // rises with the load of the motors and of the audio amplifier
inline constexpr std::uint32_t Rail3V3Channel = 9;
inline constexpr std::uint32_t Rail1V8Channel = 10;
inline constexpr std::uint32_t RailCore1V0Channel = 11;
inline constexpr std::uint32_t Rail1V0Channel = 12;

// Remote indicator: a high line lights its LED.
inline constexpr PinAddress AmberAnalyzerLine{3, 16};
inline constexpr PinAddress BlueAnalyzerLine{3, 17};
inline constexpr PinAddress BlueWaterLine{3, 18};
inline constexpr PinAddress AmberWaterLine{3, 19};
inline constexpr PinAddress RedWaterLine{3, 20};
inline constexpr PinAddress RedAnalyzerLine{3, 21};

// Switch of the memory card.
inline constexpr PinAddress CardSwitch{3, 9};

}  // namespace OnBoard
