#include "Bench/Instrument/Instrument.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Bench {

namespace {

constexpr double DegreesPerStep = 360.0 / MotorStepsPerTurn;
constexpr double CountLimit = 16777216.0;
constexpr double ValveOpenPower = 0.05;  // the least power that holds the armature

// An edge counts as passed this many degrees before it, far less than a step, so that rounding of clocks cannot stop
// the pump just before it.
constexpr double EdgeTolerance = 0.001;

// All changes in the cell slow down with time, so the strides of a long wait may grow.
constexpr double FirstStride = 0.02;
constexpr double StrideGrowth = 1.05;

double PumpSpeed(const InstrumentSettings& settings, const InstrumentInputs& inputs) {
    return settings.motorStalled || settings.pumpStageDead ? 0.0 : inputs.pumpStepFrequency * DegreesPerStep;
}

double WrapDegrees(double degrees) {
    const double wrapped = std::fmod(degrees, 360.0);
    return wrapped < 0.0 ? wrapped + 360.0 : wrapped;
}

double FlagFallDegrees(const InstrumentSettings& settings) { return 360.0 - settings.flagLowDegrees; }

// The solution of y' = (target - y) / seconds after a stride from `value`.
double Relax(double value, double target, double stride, double seconds) {
    return seconds > 0.0 ? target + (value - target) * std::exp(-stride / seconds) : target;
}

// The solution of y' = source - rate * y after a stride from `value`.
double Feed(double value, double source, double rate, double stride) {
    return rate > 0.0 ? Relax(value, source / rate, stride, 1.0 / rate) : value + source * stride;
}

// Microliters of reagent that reach the cell when `pumped` microliters leave the line.
double DrawReagent(InstrumentState& state, const InstrumentSettings& settings, double pumped) {
    if (pumped <= 0.0) {
        return 0.0;
    }
    const double bottle = settings.reagentEmpty ? 0.0 : 1.0;
    const double before = state.reagentStrength;
    state.reagentStrength = Relax(before, bottle, pumped, settings.reagentLine);
    return pumped * bottle + (before - state.reagentStrength) * settings.reagentLine;
}

// Chlorine whose color would develop in the end: all of it, or as much as the reagent is enough for.
double ColorInReach(const InstrumentState& state, const InstrumentSettings& settings) {
    return std::min(state.cellChlorine, state.reagentMixed * settings.reagentCapacity);
}

void AdvanceCell(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs,
                 double stride) {
    const bool flowing = settings.sampleFlows && inputs.valvePower > ValveOpenPower;
    const bool turns = !settings.stirStalled && !settings.stirStageDead;
    const bool stirring = turns && inputs.stirStepFrequency > 0.0;
    const double exchange = flowing ? 1.0 / settings.flushSeconds : 0.0;
    const double pumped = std::max(0.0, PumpSpeed(settings, inputs)) / 360.0 * settings.reagentPerTurn * stride;
    const double dosed = DrawReagent(state, settings, pumped);

    if (flowing) {
        state.cellChlorine = Relax(state.cellChlorine, settings.chlorine, stride, settings.flushSeconds);
    }
    const double mixing = 1.0 / (stirring ? settings.stirredMixSeconds : settings.unstirredMixSeconds);
    const double reagent = Feed(state.reagentUnmixed + state.reagentMixed, dosed / stride, exchange, stride);
    const double before = ColorInReach(state, settings);
    state.reagentUnmixed = std::min(reagent, Feed(state.reagentUnmixed, dosed / stride, exchange + mixing, stride));
    state.reagentMixed = reagent - state.reagentUnmixed;
    const double reach = (before + ColorInReach(state, settings)) / 2.0;
    state.color = Feed(state.color, reach / settings.developSeconds, exchange + 1.0 / settings.developSeconds, stride);

    const double clearing = stirring ? settings.stirredClearSeconds : settings.unstirredClearSeconds;
    const double rising =
        (flowing ? settings.bubblesOfFlow / clearing : 0.0) + settings.bubblesOfReagent * pumped / stride;
    state.bubbles = Feed(state.bubbles, rising, 1.0 / clearing, stride);
}

void AdvancePump(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs,
                 double seconds) {
    const double turned = PumpSpeed(settings, inputs) * seconds;
    state.pumpAngle = WrapDegrees(state.pumpAngle + turned);
    state.pumpTravel += std::max(0.0, turned);
}

// Uniform in (0, 1], the same for the same seed and number on every machine.
double Uniform(std::uint64_t seed, std::uint64_t number) {
    std::uint64_t bits = (seed << 40) + number * 0x9E3779B97F4A7C15U + 0x9E3779B97F4A7C15U;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    bits ^= bits >> 31;
    return (static_cast<double>(bits >> 11) + 1.0) / 9007199254740992.0;
}

// Normally distributed around 0 with a standard deviation of 1; always 0 with the noise off.
double NextNoise(InstrumentState& state, const InstrumentSettings& settings) {
    if (!settings.noise) {
        return 0.0;
    }
    const double length = std::sqrt(-2.0 * std::log(Uniform(settings.seed, state.readings++)));
    return length * std::cos(2.0 * 3.14159265358979323846 * Uniform(settings.seed, state.readings++));
}

double LightAtDetector(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs) {
    if (settings.ledDead || inputs.ledDuty <= 0.0) {
        return 0.0;
    }
    const double drift = std::max(0.0, 1.0 + settings.ledDriftPerHour * state.seconds / 3600.0);
    const double emitted =
        settings.lightAtFullDuty * inputs.ledDuty * (1.0 - settings.ledDroop * state.ledWarmth) * drift;
    const double flicker = settings.stuckBubbles * 0.3 * NextNoise(state, settings);
    const double passed = emitted * std::pow(10.0, -std::max(0.0, CellAbsorbance(state, settings) + flicker));
    return passed * (1.0 + settings.lightNoise * NextNoise(state, settings));
}

}  // namespace

void Advance(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs,
             double seconds) {
    if (!(seconds > 0.0) || !std::isfinite(seconds)) {
        return;
    }
    AdvancePump(state, settings, inputs, seconds);
    state.ledWarmth = Relax(state.ledWarmth, settings.ledDead ? 0.0 : inputs.ledDuty, seconds, settings.ledWarmSeconds);
    state.seconds += seconds;
    double stride = FirstStride;
    double left = seconds;
    while (left > 0.0) {
        stride = std::min(left, stride * StrideGrowth);
        AdvanceCell(state, settings, inputs, stride);
        left -= stride;
    }
}

bool FlagHigh(const InstrumentState& state, const InstrumentSettings& settings) {
    if (settings.flagStuckHigh || settings.flagStuckLow) {
        return settings.flagStuckHigh;
    }
    return WrapDegrees(state.pumpAngle + EdgeTolerance) < FlagFallDegrees(settings);
}

double SecondsUntilFlagChange(const InstrumentState& state, const InstrumentSettings& settings,
                              const InstrumentInputs& inputs) {
    const double speed = PumpSpeed(settings, inputs);
    const bool stuck = settings.flagStuckHigh || settings.flagStuckLow;
    if (stuck || speed == 0.0 || settings.flagLowDegrees <= 0.0 || settings.flagLowDegrees >= 360.0) {
        return std::numeric_limits<double>::infinity();
    }
    const double angle = WrapDegrees(state.pumpAngle + EdgeTolerance);
    const double fall = FlagFallDegrees(settings);
    const bool high = angle < fall;
    const double forwards = (high ? fall : 360.0) - angle;
    const double backwards = high ? angle : angle - fall;
    // Slightly past the edge, so that a caller that waits this long finds it passed.
    return ((speed > 0.0 ? forwards : backwards) + EdgeTolerance) / std::fabs(speed);
}

double CellAbsorbance(const InstrumentState& state, const InstrumentSettings& settings) {
    const double developed = settings.cellConstant == 0.0 ? 0.0 : state.color / settings.cellConstant;
    return settings.background + developed + state.bubbles + settings.stuckBubbles;
}

std::int32_t ReadDetector(InstrumentState& state, const InstrumentSettings& settings, const InstrumentInputs& inputs) {
    const double light = LightAtDetector(state, settings, inputs);
    const double count = settings.darkCount + light + settings.readNoise * NextNoise(state, settings);
    if (settings.detectorSaturated) {
        return static_cast<std::int32_t>(CountLimit) - 1;
    }
    return static_cast<std::int32_t>(std::lround(std::clamp(count, -CountLimit, CountLimit - 1.0)));
}

}  // namespace Bench
