// The voltages at the multiplexer's channels.
#include "Bench/Instrument/Instrument.h"

namespace Bench {

namespace {

constexpr int LoopChannel = 0;
constexpr int SupplyChannel = 7;

struct SenseRow {
    int channel;
    IndicatorLed led;
};

constexpr SenseRow SenseRows[] = {
    {1, IndicatorLed::AmberAnalyzer}, {2, IndicatorLed::BlueAnalyzer}, {3, IndicatorLed::BlueWater},
    {4, IndicatorLed::AmberWater},    {5, IndicatorLed::RedWater},     {6, IndicatorLed::RedAnalyzer},
};

bool IsIn(std::uint8_t leds, IndicatorLed led) { return (leds >> static_cast<unsigned>(led) & 1U) != 0; }

double LoopVolts(const InstrumentSettings& settings, const InstrumentInputs& inputs) {
    if (!IsIn(inputs.indicatorLedsOn, IndicatorLed::BlueAnalyzer)) {
        return 0.0;
    }
    if (IsIn(settings.indicatorLedsOpen, IndicatorLed::BlueAnalyzer)) {
        return settings.openLoopVolts;
    }
    return settings.blueDropVolts + settings.ledAmperes * settings.cableFeet * settings.cableOhmsPerFoot;
}

double SenseVolts(const InstrumentSettings& settings, const InstrumentInputs& inputs, IndicatorLed led) {
    const bool flows = IsIn(inputs.indicatorLedsOn, led) && !IsIn(settings.indicatorLedsOpen, led);
    return flows ? settings.ledAmperes * settings.senseOhms : 0.0;
}

// What motors, valve and amplifier add to the supply measure.
double Load(const InstrumentSettings& settings, const InstrumentInputs& inputs) {
    const bool pump = inputs.pumpStepFrequency != 0.0 && !settings.pumpStageDead;
    const bool stir = inputs.stirStepFrequency != 0.0 && !settings.stirStageDead;
    const bool audio = inputs.audioPlaying && !settings.amplifierDead;
    return (pump ? settings.supplyPump : 0.0) + (stir ? settings.supplyStir : 0.0) +
           (audio ? settings.supplyAudio : 0.0) + settings.supplyValve * inputs.valvePower;
}

// Volts of a rail without load; 0 for any other channel.
double Rail(const InstrumentSettings& settings, int channel) {
    switch (channel) {
        case 9:
            return settings.rail33;
        case 10:
            return settings.rail18;
        case 11:
            return settings.railCore10;
        case 12:
            return settings.rail10;
        default:
            return 0.0;
    }
}

}  // namespace

double MultiplexerVoltage(const InstrumentSettings& settings, const InstrumentInputs& inputs, int channel) {
    constexpr double Sag = 0.01;  // of a rail, for each volt of load at the supply measure
    if (channel == LoopChannel) {
        return LoopVolts(settings, inputs) / settings.loopGain;
    }
    if (channel == SupplyChannel) {
        return settings.supplyIdle + Load(settings, inputs);
    }
    for (const SenseRow& row : SenseRows) {
        if (row.channel == channel) {
            return SenseVolts(settings, inputs, row.led);
        }
    }
    return Rail(settings, channel) * (1.0 - Sag * Load(settings, inputs));
}

}  // namespace Bench
