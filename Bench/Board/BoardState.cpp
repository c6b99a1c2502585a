#include "Bench/Board/BoardState.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace Bench {

namespace {

constexpr double NanoSeconds = 1e9;
constexpr double MinStep = 1e-6;  // seconds: rounding must not hold the instrument at an edge of its flag

// Advances the instrument to that moment and counts each edge of the flag on the way.
void RunInstrument(BoardState& state, std::int64_t until) {
    const InstrumentInputs inputs = InputsOf(state);
    const InstrumentSettings settings = EffectiveSettings(state);
    double left = static_cast<double>(until - state.instrumentTime) / NanoSeconds;
    PinState& flag = state.PinAt(HomeFlag);
    while (left > 0.0) {
        const bool before = FlagHigh(state.instrument, settings);
        const double change = SecondsUntilFlagChange(state.instrument, settings, inputs);
        const double step = std::min(left, std::max(change, MinStep));
        Advance(state.instrument, settings, inputs, step);
        left -= step;
        const bool after = FlagHigh(state.instrument, settings);
        if (before != after && !flag.output && flag.driven < 0) {
            CountEdge(flag, after);
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

void Keep(char* place, std::size_t size, const std::string& text) { std::snprintf(place, size, "%s", text.c_str()); }

void SetUpExactTime(BoardState& state, const BoardSetup& setup) {
    ExactState& exact = state.exact;
    exact.wanted = setup.exact.has_value();
    exact.stopAt.store(MonotonicAtStart);
    exact.phase.store(static_cast<std::uint32_t>(ExactPhase::Running));
    exact.quiet = exact.pauseAsked = false;
    exact.hash = exact.events = exact.decisions = exact.switches = 0;
    exact.waits[0] = exact.failure[0] = '\0';
    if (!setup.exact) {
        return;
    }
    exact.seed = setup.exact->seed;
    Keep(exact.policy, sizeof(exact.policy), setup.exact->policy);
    Keep(exact.traceFile, sizeof(exact.traceFile), setup.exact->traceFile);
    exact.traceFrom = setup.exact->traceFrom;
    exact.traceTo = setup.exact->traceTo;
    state.clock.exactNow.store(MonotonicAtStart);
    state.clock.held.store(true);
    state.clock.exact.store(true);
}

}  // namespace

BoardLock::BoardLock(BoardState& state) : m_state(state) {
    const int savedErrno = errno;
    if (m_simulated) {
        Simulated()->point();
        Simulated()->hide(true);
    } else if (pthread_mutex_lock(&state.mutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&state.mutex);
    }
    BringUpToDate(state);
    errno = savedErrno;
}

BoardLock::~BoardLock() {
    if (m_simulated) {
        Simulated()->hide(false);
    } else {
        pthread_mutex_unlock(&m_state.mutex);
    }
}

void InitializeState(BoardState& state, const char* folder, const BoardSetup& setup) {
    if (std::strcmp(state.folder, folder) != 0) {  // hooks read it without the lock, so a reset does not write it
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
    std::memset(static_cast<void*>(state.wires), 0, sizeof(state.wires));
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
    StartClock(state.clock, setup.exact ? 1.0 : setup.speed, setup.startSeconds);
    SetUpExactTime(state, setup);
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
        ActivateDueFaults(state, next);
    }
    RunTo(state, now);
}

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

void Trace(BoardState& state, int error, const char* format, ...) {
    TraceRecord& record = state.trace[state.traced % TraceLength];
    record.time = MonotonicNow(state.clock) - MonotonicAtStart;
    record.deviceTime = DeviceTime(state);
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(record.text, sizeof(record.text), format, arguments);
    va_end(arguments);
    if (error != 0 && length >= 0) {
        const std::size_t used = std::min<std::size_t>(static_cast<std::size_t>(length), sizeof(record.text) - 1);
        std::snprintf(record.text + used, sizeof(record.text) - used, " !%s", strerrorname_np(error));
    }
    ++state.traced;
    Changed(state);
}

InstrumentInputs InputsOf(const BoardState& state) {
    const auto duty = [&state](int channel) {
        const PwmState& pwm = state.pwm[channel];
        return pwm.enabled && pwm.period > 0 ? static_cast<double>(pwm.duty) / static_cast<double>(pwm.period) : 0.0;
    };
    const auto pulses = [&state](int channel) {
        const PwmState& pwm = state.pwm[channel];
        return pwm.enabled && pwm.period > 0 && pwm.duty > 0 ? NanoSeconds / static_cast<double>(pwm.period) : 0.0;
    };
    constexpr int LedChannel = 0;
    constexpr int PumpChannel = 1;
    constexpr int StirChannel = 2;
    constexpr int ValveChannel = 3;
    constexpr Line PumpDisable{0, 2};
    constexpr Line PumpReverse{0, 3};
    constexpr Line PumpCurrent[] = {{0, 4}, {0, 5}, {0, 6}};
    constexpr Line StirDisable{1, 15};
    const auto high = [&state](Line line) { return PinLevel(state, line); };
    const bool pumpEnabled = !high(PumpDisable) && std::any_of(std::begin(PumpCurrent), std::end(PumpCurrent), high);

    InstrumentInputs inputs;
    inputs.ledDuty = duty(LedChannel);
    inputs.pumpStepFrequency = pumpEnabled ? (high(PumpReverse) ? -1.0 : 1.0) * pulses(PumpChannel) : 0.0;
    inputs.stirStepFrequency = high(StirDisable) ? 0.0 : pulses(StirChannel);
    inputs.valvePower = FaultActive(state, "valve-stuck") ? 0.0 : duty(ValveChannel);
    inputs.audioPlaying = SoundPlays(state);
    inputs.indicatorLedsOn = IndicatorLinesHigh(state);
    return inputs;
}

InstrumentSettings EffectiveSettings(const BoardState& state) {
    InstrumentSettings settings = state.settings;
    BreakInstrument(state, settings);
    BreakIndicator(state, settings);
    settings.sampleFlows = settings.sampleFlows && !FaultActive(state, "flow-stopped");
    if (FaultActive(state, "bubbles")) {
        settings.stuckBubbles = std::max(settings.stuckBubbles, 0.2);
    }
    return settings;
}

double ChannelVolts(const BoardState& state, int channel) {
    constexpr double OutOfLimits = 0.5;  // of the rail's nominal voltage
    const double volts = MultiplexerVoltage(EffectiveSettings(state), InputsOf(state), channel);
    return RailOut(state, channel) ? volts * OutOfLimits : volts;
}

}  // namespace Bench
