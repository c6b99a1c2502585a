// The analyzer's fluidics, chemistry and optics as plain arithmetic: no system call, no allocation, no clock, no lock.
// The caller owns the state, advances it by the time that has passed under its inputs, and then reads what the analyzer
// could measure. All records are trivially copyable, so that several processes can map them.
#pragma once

#include <cstdint>

namespace Bench {

constexpr int MotorStepsPerTurn = 1600;

// Properties of water, light, chemistry and board, and every fault of the instrument itself. To change them, first
// advance the state to the present.
struct InstrumentSettings {
    // The water.
    double chlorine = 0.60;     // mg/l in the water on the sample line
    double cellConstant = 2.4;  // mg/l for one unit of absorbance at full development; the product's own factor
    double background = 0.010;  // absorbance of the unreacted water
    double flushSeconds = 3.0;  // time constant of the exchange while the sample flows
    bool sampleFlows = true;    // false: no water behind the open valve

    // Reagent and color.
    double reagentPerTurn = 120.0;   // microliters for one revolution of the pump
    double reagentLine = 60.0;       // microliters between bottle and cell
    double reagentCapacity = 0.05;   // mg/l of chlorine that one microliter of reagent in the cell can color
    double stirredMixSeconds = 1.2;  // time constant of mixing with the stir bar turning
    double unstirredMixSeconds = 1500.0;
    double developSeconds = 4.0;  // time constant of the color
    bool reagentEmpty = false;    // the pump draws air

    // Bubbles, as absorbance of the light that they scatter away.
    double bubblesOfFlow = 0.030;       // kept in the cell by flowing sample
    double bubblesOfReagent = 0.00008;  // for each microliter of reagent injected
    double stirredClearSeconds = 2.5;   // time constant of their rise, with the stir bar turning
    double unstirredClearSeconds = 4.0;
    double stuckBubbles = 0.0;  // absorbance of bubbles that stay; they flicker

    // Light and detector.
    double lightAtFullDuty = 7.0e6;  // counts at 100 percent duty, cold, through a clear cell
    double ledDroop = 0.02;          // fraction of the light lost by a fully warmed LED at 100 percent duty
    double ledWarmSeconds = 3.0;     // time constant of its warming
    double ledDriftPerHour = 0.0;    // fraction of the light gained (below 0: lost) for each hour of simulated time
    bool ledDead = false;
    double darkCount = 1500.0;
    double readNoise = 60.0;         // counts, standard deviation, in each reading
    double lightNoise = 0.0001;      // fraction of the light, standard deviation, in each reading
    bool detectorSaturated = false;  // the converter always reads full scale

    // Pump and its home flag.
    double flagLowDegrees = 50.0;  // last part of a turn with a low flag; it rises at 0 degrees
    bool motorStalled = false;     // the pump gets its steps and does not turn
    bool flagStuckHigh = false;
    bool flagStuckLow = false;

    // Board voltages at the multiplexer, volts, without load.
    double rail33 = 3.30;        // channel 9
    double rail18 = 1.80;        // channel 10
    double railCore10 = 1.00;    // channel 11
    double rail10 = 1.00;        // channel 12
    double supplyIdle = 0.42;    // channel 7, everything at rest
    double supplyPump = 0.95;    // what the turning pump adds to channel 7
    double supplyStir = 0.14;    // the stir motor
    double supplyAudio = 0.06;   // the audio amplifier while it plays
    double supplyValve = 0.05;   // the sample valve at full power
    bool amplifierDead = false;  // a clip plays without sound and without current
    bool pumpStageDead = false;  // the pump gets its steps, does not turn and draws nothing
    bool stirStageDead = false;
    bool stirStalled = false;  // draws current and does not turn

    // The remote indicator and its cable. Each LED has a constant current and its own sense resistor.
    double cableFeet = 100.0;
    double cableOhmsPerFoot = 0.052;     // both wires; as in the settings
    double ledAmperes = 0.020;           // in each lit LED
    double senseOhms = 100.0;            // as in the settings
    double blueDropVolts = 3.2;          // as in the settings
    double loopGain = 3.0;               // loop volts for one volt at channel 0; as in the settings
    double openLoopVolts = 12.0;         // of a loop whose LED is broken
    std::uint8_t indicatorLedsOpen = 0;  // broken LEDs, bit by IndicatorLed

    bool noise = true;  // false: every reading is exact
    std::uint32_t seed = 1;
};

// The LEDs of the remote indicator. The multiplexer's channels 2, 1, 6, 3, 4, 5 read their sense resistors.
enum class IndicatorLed : std::uint8_t { BlueAnalyzer, AmberAnalyzer, RedAnalyzer, BlueWater, AmberWater, RedWater };
constexpr int IndicatorLeds = 6;

// The board's lines and channels at one moment.
struct InstrumentInputs {
    double ledDuty = 0.0;            // 0 to 1; 0 while the channel is disabled
    double pumpStepFrequency = 0.0;  // Hz; 0 with chip disabled, current limit 0 or channel off; below 0 in reverse
    double stirStepFrequency = 0.0;  // Hz; 0 with chip disabled or channel off
    double valvePower = 0.0;         // 0 to 1
    bool audioPlaying = false;
    std::uint8_t indicatorLedsOn = 0;  // lines that are high, bit by IndicatorLed
};

// The instrument's state. A new one is in service: clear old water in the cell, the reagent line full.
struct InstrumentState {
    double seconds = 0.0;          // simulated time since the start
    double pumpAngle = 200.0;      // degrees, 0 up to but not including 360; the home flag rises at 0
    double pumpTravel = 0.0;       // degrees turned forward since the start
    double cellChlorine = 0.0;     // mg/l, of the water in the cell
    double reagentUnmixed = 0.0;   // microliters in the cell, not yet mixed with the water
    double reagentMixed = 0.0;     // microliters in the cell
    double reagentStrength = 1.0;  // share of reagent, not air, at the cell's end of the line
    double color = 0.0;            // mg/l of chlorine whose color has developed
    double bubbles = 0.0;          // absorbance
    double ledWarmth = 0.0;        // 0 to 1, follows the duty
    std::uint64_t readings = 0;    // of the noise taken so far
};

// Advances the state by `seconds` under unchanged inputs and settings. Steps may have any length; 0 or less: no change.
void Advance(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs,
             double seconds);

// The level of the home flag.
bool FlagHigh(const InstrumentState& state, const InstrumentSettings& settings);

// Seconds until that level changes at the present speed; infinity if it will not.
double SecondsUntilFlagChange(const InstrumentState& state, const InstrumentSettings& settings,
                              const InstrumentInputs& inputs);

// Decadic absorbance of the light path, without flicker.
double CellAbsorbance(const InstrumentState& state, const InstrumentSettings& settings);

// One conversion of the detector, channel 0: -2^24 to 2^24 - 1 counts. Uses the next noise.
std::int32_t ReadDetector(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs);

// Volts at the multiplexer's channels 0 (loop voltage of the blue analyzer LED), 1 to 6 (LED sense), 7 (supply measure)
// and 9 to 12 (rails), under the present load; 0 for any other.
double MultiplexerVoltage(const InstrumentSettings& settings, const InstrumentInputs& inputs, int channel);

}  // namespace Bench
