// The content of the mapped file. Everything but the clock and the counters of calls is read and changed under
// BoardLock, which also brings the instrument and the faults up to date. Functions that the hooks call leave errno
// alone and return an error number, 0 for success.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Bench/Board/BoardCalls.h"
#include "Bench/Board/BoardClock.h"
#include "Bench/Board/BoardFaults.h"
#include "Bench/Board/BoardLinks.h"
#include "Bench/Board/BoardWire.h"
#include "Bench/Board/ExactState.h"
#include "Bench/Board/OwnAllocations.h"

namespace Bench {

constexpr std::size_t TraceLength = 8192;
constexpr std::size_t TraceTextLength = 248;

// Without initial values: two megabytes that are zero in a new file anyway.
struct TraceRecord {
    std::int64_t time;
    std::int64_t deviceTime;
    char text[TraceTextLength];
};

struct BoardState {
    std::uint64_t magic = 0;
    std::uint64_t size = 0;
    pthread_mutex_t mutex = {};
    std::atomic<std::uint32_t> changes{0};  // futex word: anything changed
    std::atomic<std::uint32_t> run{0};      // changes with each reset and at the end of the board
    char folder[PathLength] = {};
    ClockState clock;
    ExactState exact;

    PinState pins[Banks][PinsPerBank];
    PwmState pwm[PwmChannels];
    SpiState spi;
    IioState iio;
    CardState card;

    InstrumentState instrument;
    InstrumentSettings settings;  // as set; EffectiveSettings adds the faults
    std::int64_t instrumentTime = 0;
    bool audioPlaying = false;  // as set; SoundPlays adds the players
    SoundState sound;
    NetworkState network;
    Wire wires[Wires];

    FaultEntry faults[MaxFaults];
    CallState calls[std::size(CallNames)];
    std::atomic<std::uint32_t> deviceCalls{0};  // in progress
    std::atomic<std::int64_t> deviceTime{0};    // see DeviceTime; less the start of the calls in progress
    std::uint64_t traced = 0;                   // in the whole run
    std::uint64_t traceStart = 0;               // number of the first record that is kept
    TraceRecord trace[TraceLength];

    PinState& PinAt(Line line) { return pins[line.bank][line.pin]; }
    const PinState& PinAt(Line line) const { return pins[line.bank][line.pin]; }
};

// Holds the board's mutex, and survives the death of another process that held it. `BoardLock(state)->x` locks for one
// expression. In exact time it locks nothing: the simulation runs one thread, and none stops while it has the lock.
class BoardLock {
public:
    explicit BoardLock(BoardState& state);
    ~BoardLock();
    BoardLock(const BoardLock&) = delete;
    BoardLock& operator=(const BoardLock&) = delete;

    BoardState* operator->() const { return &m_state; }
    BoardState& operator*() const { return m_state; }

private:
    BoardState& m_state;
    const bool m_simulated = Simulated() != nullptr;
    const OwnAllocations m_own;
};

void InitializeState(BoardState& state, const char* folder, const BoardSetup& setup);  // all but the mutex
void Changed(BoardState& state);  // wakes every thread that waits for the board
// Activates due faults, advances the instrument and counts the edges of its flag, up to now.
void BringUpToDate(BoardState& state);

InstrumentInputs InputsOf(const BoardState& state);
InstrumentSettings EffectiveSettings(const BoardState& state);
double ChannelVolts(const BoardState& state, int channel);
int SelectedChannel(const BoardState& state);  // of the multiplexer

// One call on a device file or on the system log, or the board's own work within another call: from here to the end of
// its scope, or until it turns out to be none. Calls that overlap in several threads count once.
class DeviceCall {
public:
    explicit DeviceCall(BoardState& state, bool isDevice = true) : m_state(state) { Is(isDevice); }
    ~DeviceCall() { Is(false); }
    DeviceCall(const DeviceCall&) = delete;
    DeviceCall& operator=(const DeviceCall&) = delete;

    void Is(bool device);

private:
    BoardState& m_state;
    bool m_device = false;
};

std::int64_t DeviceTime(const BoardState& state);  // real nanoseconds in such calls so far

// Records what the program did, with " !EBUSY" appended for an error.
[[gnu::format(printf, 3, 4)]] void Trace(BoardState& state, int error, const char* format, ...);

// ---- The log file in the bench folder.
void AppendLogLine(const BoardState& state, const LogLine& line);

}  // namespace Bench
