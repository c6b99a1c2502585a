#include "Bench/Board/Board.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/BoardState.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t Magic = 0x42656e6368303031;
constexpr const char* StateFile = "/board.state";

constexpr const char* Folders[] = {
    "/sys/class/gpio",
    "/sys/class/pwm/pwmchip0",
    "/sys/bus/iio/devices/iio:device0",
    "/dev",
    "/mnt/sd-card",
    "/etc",
    "/card",
    "/usr/share/vorn/bin",
    "/var/log/vorn/data",
};

constexpr const char* Files[] = {
    "/sys/class/gpio/export",
    "/sys/class/gpio/unexport",
    "/sys/class/pwm/pwmchip0/npwm",
    "/sys/class/pwm/pwmchip0/export",
    "/sys/class/pwm/pwmchip0/unexport",
    "/sys/bus/iio/devices/iio:device0/in_voltage_scale",
    "/dev/mem",
    "/dev/spidev32765.1",
    "/dev/mmcblk0",
    "/dev/mmcblk0p1",
};

std::string WithReason(const std::string& text, int error) { return text + ": " + std::strerror(error); }

// Creates the files of the bench folder that show the board's files at power-on.
void MakeTree(const BoardState& state) {
    const std::string folder = state.folder;
    std::error_code ignored;
    for (const char* part : {"/sys", "/dev", "/mnt", "/etc", "/log"}) {
        fs::remove_all(folder + part, ignored);
    }
    for (const char* part : Folders) {
        fs::create_directories(folder + part, ignored);
    }
    for (const char* file : Files) {
        SetShadowFile(state, file, true);
    }
    for (int input = 0; input < IioInputs; ++input) {
        const std::string file = "/sys/bus/iio/devices/iio:device0/in_voltage" + std::to_string(input) + "_raw";
        SetShadowFile(state, file.c_str(), true);
    }
    WriteMountTable(state);
}

bool InitializeMutex(pthread_mutex_t& mutex) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) {
        return false;
    }
    const bool done = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED) == 0 &&
                      pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      pthread_mutex_init(&mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return done;
}

// Maps the state file. Returns null with the reason if that fails.
void* MapState(const std::string& folder, int flags, std::string& error) {
    const std::string path = folder + StateFile;
    const int file = Real::open(path.c_str(), flags | O_CLOEXEC, 0644);
    if (file < 0) {
        error = WithReason(path, errno);
        return nullptr;
    }
    void* address = MAP_FAILED;
    struct stat64 status {};
    if ((flags & O_CREAT) != 0 && Real::ftruncate64(file, sizeof(BoardState)) != 0) {
        error = WithReason(path, errno);
    } else if (Real::fstat64(file, &status) != 0 || status.st_size != static_cast<off64_t>(sizeof(BoardState))) {
        error = path + ": is no board of this version";
    } else {
        // By its public name, because the thread sanitizer must see the mapping.
        address = ::mmap64(nullptr, sizeof(BoardState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        error = address == MAP_FAILED ? WithReason(path, errno) : "";
    }
    Real::close(file);
    return address == MAP_FAILED ? nullptr : address;
}

}  // namespace

Board::Board(std::string folder, BoardState* state) : m_folder(std::move(folder)), m_state(state) {}

Board::~Board() {
    if (AttachedState() == m_state) {
        DetachThisProcess();
    }
    ::munmap(m_state, sizeof(BoardState));
}

std::unique_ptr<Board> Board::Create(const std::string& folder, const BoardSetup& setup, std::string& error) {
    std::error_code failure;
    fs::create_directories(folder, failure);
    const fs::path absolute = failure ? fs::path() : fs::canonical(folder, failure);
    if (failure) {
        error = folder + ": " + failure.message();
        return nullptr;
    }
    if (absolute.string().size() >= PathLength) {
        error = folder + ": the path is too long";
        return nullptr;
    }
    // A new file instead of the old one emptied: a process that still maps the old board keeps it.
    Real::unlink((absolute.string() + StateFile).c_str());
    void* memory = MapState(absolute.string(), O_RDWR | O_CREAT, error);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* state = new (memory) BoardState;
    if (!InitializeMutex(state->mutex)) {
        error = folder + ": can't create the board's lock";
        ::munmap(memory, sizeof(BoardState));
        return nullptr;
    }
    InitializeState(*state, absolute.c_str(), setup);
    MakeTree(*state);
    state->size = sizeof(BoardState);
    state->magic = Magic;
    return std::unique_ptr<Board>(new Board(absolute.string(), state));
}

std::unique_ptr<Board> Board::Open(const std::string& folder, std::string& error) {
    void* memory = MapState(folder, O_RDWR, error);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* state = static_cast<BoardState*>(memory);
    if (state->magic != Magic || state->size != sizeof(BoardState)) {
        error = folder + StateFile + ": is no board of this version";
        ::munmap(memory, sizeof(BoardState));
        return nullptr;
    }
    return std::unique_ptr<Board>(new Board(state->folder, state));
}

void Board::Reset(const BoardSetup& setup) {
    const BoardLock state(*m_state);
    InitializeState(*state, m_folder.c_str(), setup);
    MakeTree(*state);
    Changed(*state);
}

bool Board::RunUntil(double seconds, double realSeconds) {
    ExactState& exact = m_state->exact;
    const std::int64_t stopAt = MonotonicAtStart + static_cast<std::int64_t>(seconds * 1e9);
    exact.stopAt.store(stopAt);
    if (exact.phase.load() == static_cast<std::uint32_t>(ExactPhase::Paused) && MonotonicNow(m_state->clock) < stopAt) {
        exact.phase.store(static_cast<std::uint32_t>(ExactPhase::Running));
        FutexWakeAll(exact.phase);
    }
    constexpr auto Running = static_cast<std::uint32_t>(ExactPhase::Running);
    const std::int64_t end = RealNanoSeconds() + static_cast<std::int64_t>(realSeconds * 1e9);
    for (std::int64_t left = 1; left > 0 && exact.phase.load() == Running; left = end - RealNanoSeconds()) {
        FutexWait(exact.phase, Running, std::max<std::int64_t>(end - RealNanoSeconds(), 1));
    }
    return exact.phase.load() != Running;
}

void Board::BeginProgram() {
    const BoardLock state(*m_state);
    state->exact.stopAt.store(MonotonicNow(state->clock));
    state->exact.phase.store(static_cast<std::uint32_t>(ExactPhase::Running));
    for (Wire& wire : state->wires) {
        wire.open = false;
    }
}

bool Board::IsExact() const { return m_state->exact.wanted; }

ExactView Board::Exact() const {
    const ExactState& exact = m_state->exact;
    const bool over = exact.phase.load() == static_cast<std::uint32_t>(ExactPhase::Over);
    return {over, exact.quiet, exact.hash, exact.events, exact.decisions, exact.switches, exact.waits, exact.failure};
}

double Board::Speed() const { return static_cast<double>(m_state->clock.speed.load()) / 1e6; }

void Board::SetSpeed(double speed) {
    if (IsExact()) {
        return;
    }
    const BoardLock state(*m_state);
    SetClockSpeed(state->clock, speed);
    Changed(*state);
}

void Board::HoldSpeed(bool hold) { m_state->clock.held.store(hold); }

double Board::Seconds() const { return static_cast<double>(MonotonicNow(m_state->clock) - MonotonicAtStart) / 1e9; }

std::int64_t Board::WallNanoSeconds() const { return WallNow(m_state->clock); }

void Board::JumpClock(double seconds) {
    const BoardLock state(*m_state);
    JumpClockAt(state->clock, MonotonicNow(state->clock), static_cast<std::int64_t>(seconds * 1e9));
}

InstrumentState Board::Instrument() const { return BoardLock(*m_state)->instrument; }
InstrumentSettings Board::Settings() const { return EffectiveSettings(*BoardLock(*m_state)); }
InstrumentInputs Board::Inputs() const { return InputsOf(*BoardLock(*m_state)); }

void Board::SetInstrument(const InstrumentState& instrument) {
    const BoardLock state(*m_state);
    state->instrument = instrument;
    Changed(*state);
}

void Board::SetSettings(const InstrumentSettings& settings) {
    const BoardLock state(*m_state);
    state->settings = settings;
    Changed(*state);
}

void Board::SetAudioPlaying(bool playing) { BoardLock(*m_state)->audioPlaying = playing; }

std::vector<TraceEntry> Board::TraceWithTimes() const {
    const BoardLock state(*m_state);
    std::vector<TraceEntry> list;
    const std::uint64_t first = state->traced > TraceLength ? state->traced - TraceLength : 0;
    for (std::uint64_t i = std::max(first, state->traceStart); i < state->traced; ++i) {
        const TraceRecord& record = state->trace[i % TraceLength];
        list.push_back(
            {static_cast<double>(record.time) / 1e9, record.text, static_cast<double>(record.deviceTime) / 1e9});
    }
    return list;
}

std::vector<std::string> Board::Trace() const {
    std::vector<std::string> list;
    for (TraceEntry& entry : TraceWithTimes()) {
        list.push_back(std::move(entry.text));
    }
    return list;
}

std::uint64_t Board::TraceCount() const { return BoardLock(*m_state)->traced; }

void Board::ClearTrace() {
    const BoardLock state(*m_state);
    state->traceStart = state->traced;
}

bool Board::WaitUntil(const std::function<bool()>& condition, double realSeconds) const {
    constexpr std::int64_t Slice = 100000000;  // a change that only the passing of time causes is seen this late
    const std::int64_t end = RealNanoSeconds() + static_cast<std::int64_t>(realSeconds * 1e9);
    for (;;) {
        const std::uint32_t seen = m_state->changes.load();
        if (condition()) {
            return true;
        }
        const std::int64_t left = end - RealNanoSeconds();
        if (left <= 0) {
            return false;
        }
        FutexWait(m_state->changes, seen, std::min(left, Slice));
    }
}

bool Board::WaitForTrace(const std::string& text, double realSeconds) const {
    return WaitUntil(
        [this, &text] {
            const std::vector<std::string> trace = Trace();
            return std::find(trace.begin(), trace.end(), text) != trace.end();
        },
        realSeconds);
}

}  // namespace Bench
