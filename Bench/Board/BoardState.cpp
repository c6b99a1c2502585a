#include "Bench/Board/BoardState.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace Bench {

namespace {

constexpr double NanoSeconds = 1e9;
constexpr double SmallestStep = 1e-6;  // seconds: rounding must not hold the instrument at an edge of its flag

constexpr int FlagBank = 1;
constexpr int FlagPin = 18;

// Lets the instrument run on to that moment; the flag's edges on the way are counted one by one.
void RunInstrument(BoardState& state, std::int64_t until) {
    const InstrumentInputs inputs = InputsOf(state);
    const InstrumentSettings settings = EffectiveSettings(state);
    double left = static_cast<double>(until - state.instrumentTime) / NanoSeconds;
    PinState& flag = state.pins[FlagBank][FlagPin];
    while (left > 0.0) {
        const bool before = FlagHigh(state.instrument, settings);
        const double change = SecondsUntilFlagChange(state.instrument, settings, inputs);
        const double step = std::min(left, std::max(change, SmallestStep));
        Advance(state.instrument, settings, inputs, step);
        left -= step;
        const bool after = FlagHigh(state.instrument, settings);
        if (before != after && !flag.output && flag.driven < 0) {
            NoteEdge(flag, after);
        }
    }
    state.instrumentTime = std::max(state.instrumentTime, until);
}

void RunTo(BoardState& state, std::int64_t until) {
    SpiState& spi = state.spi;
    if (spi.converting && spi.conversionEnds <= until) {
        RunInstrument(state, spi.conversionEnds);
        FinishConversion(state);
    }
    RunInstrument(state, until);
}

constexpr struct {
    int error;
    const char* name;
} ErrorNames[] = {
    {EPERM, "EPERM"},
    {ENOENT, "ENOENT"},
    {EIO, "EIO"},
    {ENXIO, "ENXIO"},
    {EBADF, "EBADF"},
    {EAGAIN, "EAGAIN"},
    {ENOMEM, "ENOMEM"},
    {EACCES, "EACCES"},
    {EBUSY, "EBUSY"},
    {EEXIST, "EEXIST"},
    {ENODEV, "ENODEV"},
    {EINVAL, "EINVAL"},
    {ENOTTY, "ENOTTY"},
    {ENOSPC, "ENOSPC"},
    {EROFS, "EROFS"},
    {EINTR, "EINTR"},
    {ENOTDIR, "ENOTDIR"},
    {ECONNREFUSED, "ECONNREFUSED"},
    {ENETUNREACH, "ENETUNREACH"},
};

}  // namespace

BoardLock::BoardLock(BoardState& state) : m_state(state) {
    const int savedErrno = errno;
    if (pthread_mutex_lock(&state.mutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&state.mutex);
    }
    BringUpToDate(state);
    errno = savedErrno;
}

BoardLock::~BoardLock() { pthread_mutex_unlock(&m_state.mutex); }

void InitialiseState(BoardState& state, const char* folder, const BoardSetup& setup) {
    if (std::strcmp(state.folder, folder) != 0) {  // read without the lock: a reset leaves it alone
        std::snprintf(state.folder, sizeof(state.folder), "%s", folder);
    }
    for (auto& bank : state.pins) {
        std::fill(std::begin(bank), std::end(bank), PinState{});
    }
    std::fill(std::begin(state.pwm), std::end(state.pwm), PwmState{});
    state.spi = SpiState{};
    state.spi.counts[ConverterChannels - 1] = 187144;  // 25 degrees
    state.iio = IioState{};
    std::snprintf(state.iio.scale, sizeof(state.iio.scale), "3.222656250");
    state.card = CardState{};
    state.instrument = InstrumentState{};
    state.settings = InstrumentSettings{};
    state.settings.noise = setup.noise;
    state.settings.seed = setup.seed;
    state.audioPlaying = false;
    state.sound = SoundState{};
    state.network = NetworkState{};
    state.run.fetch_add(1);
    std::fill(std::begin(state.faults), std::end(state.faults), FaultEntry{});
    for (CallState& call : state.calls) {
        call.count = 0;
        call.failIn = 0;
    }
    state.deviceCalls.store(0);  // a program may have been killed in one
    state.deviceTime.store(0);
    state.traced = 0;
    state.traceStart = 0;
    StartClock(state.clock, setup.speed, setup.startSeconds);
    state.instrumentTime = MonotonicAtStart;
}

void Changed(BoardState& state) {
    state.changes.fetch_add(1);
    FutexWakeAll(state.changes);
}

void BringUpToDate(BoardState& state) {
    const std::int64_t now = MonotonicNow(state.clock);
    for (std::int64_t next = NextFaultAt(state); next <= now; next = NextFaultAt(state)) {
        RunTo(state, next);
        ApplyDueFaults(state, next);
    }
    RunTo(state, now);
}

DeviceCall::DeviceCall(BoardState& state, bool isDevice) : m_state(state) { Is(isDevice); }

void DeviceCall::Is(bool device) {
    if (device == m_device) {
        return;
    }
    m_device = device;
    const std::int64_t now = RealNanoSeconds();
    if (device && m_state.deviceCalls.fetch_add(1) == 0) {
        m_state.deviceTime.fetch_sub(now);
    } else if (!device && m_state.deviceCalls.fetch_sub(1) == 1) {
        m_state.deviceTime.fetch_add(now);
    }
}

std::int64_t DeviceTime(const BoardState& state) {
    return state.deviceTime.load() + (state.deviceCalls.load() == 0 ? 0 : RealNanoSeconds());
}

void TraceAct(BoardState& state, const char* format, ...) {
    TraceRecord& record = state.trace[state.traced % TraceLength];
    record.time = MonotonicNow(state.clock) - MonotonicAtStart;
    record.deviceTime = DeviceTime(state);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(record.text, sizeof(record.text), format, arguments);
    va_end(arguments);
    ++state.traced;
    Changed(state);
}

const char* ErrorName(int error) {
    const auto* row = std::find_if(std::begin(ErrorNames), std::end(ErrorNames),
                                   [error](const auto& candidate) { return candidate.error == error; });
    return row == std::end(ErrorNames) ? "errno" : row->name;
}

InstrumentInputs InputsOf(const BoardState& state) {
    constexpr int Led = 0;
    constexpr int Pump = 1;
    constexpr int Stir = 2;
    constexpr int Valve = 3;
    const auto duty = [&state](int channel) {
        const PwmState& pwm = state.pwm[channel];
        return pwm.enabled && pwm.period > 0 ? static_cast<double>(pwm.duty) / static_cast<double>(pwm.period) : 0.0;
    };
    const auto pulses = [&state](int channel) {
        const PwmState& pwm = state.pwm[channel];
        return pwm.enabled && pwm.period > 0 && pwm.duty > 0 ? NanoSeconds / static_cast<double>(pwm.period) : 0.0;
    };
    const bool pumpEnabled = !PinLevel(state, 0, 2);
    const bool pumpReverse = PinLevel(state, 0, 3);
    const bool pumpCurrent = PinLevel(state, 0, 4) || PinLevel(state, 0, 5) || PinLevel(state, 0, 6);
    const bool stirEnabled = !PinLevel(state, 1, 15);

    InstrumentInputs inputs;
    inputs.ledDuty = duty(Led);
    inputs.pumpStepFrequency = pumpEnabled && pumpCurrent ? (pumpReverse ? -1.0 : 1.0) * pulses(Pump) : 0.0;
    inputs.stirStepFrequency = stirEnabled ? pulses(Stir) : 0.0;
    inputs.valvePower = FaultActive(state, FaultName::ValveStuck) ? 0.0 : duty(Valve);
    inputs.audioPlaying = SoundPlays(state);
    inputs.indicatorLedsOn = IndicatorLinesHigh(state);
    return inputs;
}

InstrumentSettings EffectiveSettings(const BoardState& state) {
    InstrumentSettings settings = state.settings;
    const auto with = [&state](bool set, FaultName name) { return set || FaultActive(state, name); };
    settings.reagentEmpty = with(settings.reagentEmpty, FaultName::ReagentEmpty);
    settings.ledDead = with(settings.ledDead, FaultName::LedDead);
    settings.detectorSaturated = with(settings.detectorSaturated, FaultName::DetectorSaturated);
    settings.motorStalled = with(settings.motorStalled, FaultName::MotorStalled);
    settings.flagStuckHigh = with(settings.flagStuckHigh, FaultName::FlagStuckHigh);
    settings.flagStuckLow = with(settings.flagStuckLow, FaultName::FlagStuckLow);
    settings.sampleFlows = settings.sampleFlows && !FaultActive(state, FaultName::FlowStopped);
    settings.amplifierDead = with(settings.amplifierDead, FaultName::AmplifierDead);
    settings.pumpStageDead = with(settings.pumpStageDead, FaultName::PumpStageDead);
    settings.stirStageDead = with(settings.stirStageDead, FaultName::StirStageDead);
    settings.stirStalled = with(settings.stirStalled, FaultName::StirStalled);
    BreakIndicator(state, settings);
    if (FaultActive(state, FaultName::Bubbles)) {
        settings.stuckBubbles = std::max(settings.stuckBubbles, 0.2);
    }
    return settings;
}

double ChannelVolts(const BoardState& state, int channel) {
    constexpr double OutOfLimits = 0.5;  // of the rail's own voltage
    const double volts = MultiplexerVoltage(EffectiveSettings(state), InputsOf(state), channel);
    return RailOut(state, channel) ? volts * OutOfLimits : volts;
}

void Put(Buffer& buffer, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int count = std::vsnprintf(buffer.data + buffer.used, buffer.size - buffer.used, format, arguments);
    va_end(arguments);
    if (count > 0) {
        buffer.used = std::min(buffer.used + static_cast<std::size_t>(count), buffer.size - 1);
    }
}

}  // namespace Bench
