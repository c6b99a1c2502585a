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

std::string Because(const std::string& text, int error) { return text + ": " + std::strerror(error); }

// The real files that stand for the board's at power-on.
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
        MakeShadowFile(state, file);
    }
    for (int input = 0; input < IioInputs; ++input) {
        MakeShadowFile(state, ("/sys/bus/iio/devices/iio:device0/in_voltage" + std::to_string(input) + "_raw").c_str());
    }
    WriteMountTable(state);
}

bool InitialiseMutex(pthread_mutex_t& mutex) {
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

// Maps the state file; null with the reason where it can't be.
void* MapState(const std::string& folder, int flags, std::string& error) {
    const std::string path = folder + StateFile;
    const int file = Real::open(path.c_str(), flags | O_CLOEXEC, 0644);
    if (file < 0) {
        error = Because(path, errno);
        return nullptr;
    }
    void* address = MAP_FAILED;
    struct stat64 status {};
    if ((flags & O_CREAT) != 0 && Real::ftruncate64(file, sizeof(BoardState)) != 0) {
        error = Because(path, errno);
    } else if (Real::fstat64(file, &status) != 0 || status.st_size != static_cast<off64_t>(sizeof(BoardState))) {
        error = path + ": is no board of this version";
    } else {
        // By its public name: the thread sanitizer must see which memory comes and goes.
        address = ::mmap64(nullptr, sizeof(BoardState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        error = address == MAP_FAILED ? Because(path, errno) : "";
    }
    Real::close(file);
    return address == MAP_FAILED ? nullptr : address;
}

// In memory where the machine has such a place: tests make a board each.
std::string TemporaryFolder() {
    const char* chosen = std::getenv("TMPDIR");
    if (chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    return Real::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
}

bool PinExists(int bank, int pin) { return bank >= 0 && bank < Banks && pin >= 0 && pin < PinsPerBank; }

void SetScript(SpiScript& script, const std::vector<SpiAnswer>& answers) {
    script.next = 0;
    script.count = static_cast<std::uint32_t>(std::min(answers.size(), SpiScriptLength));
    std::copy_n(answers.begin(), script.count, std::begin(script.answers));
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
    // A new file, not the old one emptied: whoever still has an old board mapped keeps that one.
    Real::unlink((absolute.string() + StateFile).c_str());
    void* memory = MapState(absolute.string(), O_RDWR | O_CREAT, error);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* state = new (memory) BoardState;
    if (!InitialiseMutex(state->mutex)) {
        error = folder + ": can't make the lock of the board";
        ::munmap(memory, sizeof(BoardState));
        return nullptr;
    }
    InitialiseState(*state, absolute.c_str(), setup);
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
    const BoardLock lock(*m_state);
    InitialiseState(*m_state, m_folder.c_str(), setup);
    MakeTree(*m_state);
    Changed(*m_state);
}

double Board::Speed() const { return static_cast<double>(m_state->clock.speed.load()) / 1e6; }

void Board::SetSpeed(double speed) {
    const BoardLock lock(*m_state);
    SetClockSpeed(m_state->clock, speed);
    Changed(*m_state);
}

double Board::Seconds() const { return static_cast<double>(MonotonicNow(m_state->clock) - MonotonicAtStart) / 1e9; }

std::int64_t Board::WallNanoSeconds() const { return WallNow(m_state->clock); }

void Board::JumpClock(double seconds) {
    const BoardLock lock(*m_state);
    JumpClockAt(m_state->clock, MonotonicNow(m_state->clock), static_cast<std::int64_t>(seconds * 1e9));
}

PinView Board::Pin(int bank, int pin) const {
    PinView view;
    if (!PinExists(bank, pin)) {
        return view;
    }
    const BoardLock lock(*m_state);
    const PinState& state = m_state->pins[bank][pin];
    view.claimed = state.claimed;
    view.output = state.output;
    view.latch = state.latch;
    view.level = PinLevel(*m_state, bank, pin);
    view.edge = state.edge;
    if (state.driven >= 0) {
        view.driven = state.driven != 0;
    }
    return view;
}

void Board::DrivePin(int bank, int pin, bool level) {
    const BoardLock lock(*m_state);
    if (PinExists(bank, pin)) {
        SetPinDriven(*m_state, bank, pin, level ? 1 : 0);
    }
}

void Board::ReleasePin(int bank, int pin) {
    const BoardLock lock(*m_state);
    if (PinExists(bank, pin)) {
        SetPinDriven(*m_state, bank, pin, -1);
    }
}

std::uint32_t Board::OutputStatus(int bank) const {
    const BoardLock lock(*m_state);
    return PinExists(bank, 0) ? OutputStatusOf(*m_state, bank) : 0;
}

std::uint32_t Board::DataStatus(int bank) const {
    const BoardLock lock(*m_state);
    return PinExists(bank, 0) ? DataStatusOf(*m_state, bank) : 0;
}

PwmView Board::Pwm(int channel) const {
    if (channel < 0 || channel >= PwmChannels) {
        return {};
    }
    const BoardLock lock(*m_state);
    const PwmState& pwm = m_state->pwm[channel];
    return {pwm.exported, pwm.enabled, pwm.period, pwm.duty};
}

std::uint16_t Board::LastCommand() const {
    const BoardLock lock(*m_state);
    return m_state->spi.lastCommand;
}

std::size_t Board::CommandCount() const {
    const BoardLock lock(*m_state);
    return static_cast<std::size_t>(m_state->spi.commands);
}

void Board::ScriptSpiRead(const std::vector<SpiAnswer>& answers) {
    const BoardLock lock(*m_state);
    SetScript(m_state->spi.reads, answers);
}

void Board::ScriptSpiWrite(const std::vector<SpiAnswer>& answers) {
    const BoardLock lock(*m_state);
    SetScript(m_state->spi.writes, answers);
}

void Board::SetConverterChannel(int channel, std::int32_t count) {
    const BoardLock lock(*m_state);
    if (channel > 0 && channel < ConverterChannels) {
        m_state->spi.counts[channel] = count;
    }
}

void Board::SetEndOfConversion(EndOfConversion behaviour) {
    const BoardLock lock(*m_state);
    m_state->spi.endOfConversion = behaviour;
    Changed(*m_state);
}

void Board::SetConversionTime(int milliseconds) {
    const BoardLock lock(*m_state);
    m_state->spi.conversionMilliseconds = std::max(milliseconds, 0);
}

void Board::SetMultiplexerRaw(int channel, int raw) {
    const BoardLock lock(*m_state);
    if (channel >= 0 && channel < MultiplexerChannels) {
        m_state->iio.source[channel] = Source::Raw;
        m_state->iio.raw[channel] = raw;
    }
}

void Board::SetMultiplexerVolts(int channel, double volts) {
    const BoardLock lock(*m_state);
    if (channel >= 0 && channel < MultiplexerChannels) {
        m_state->iio.source[channel] = Source::Volts;
        m_state->iio.volts[channel] = volts;
    }
}

void Board::ReleaseMultiplexer(int channel) {
    const BoardLock lock(*m_state);
    if (channel >= 0 && channel < MultiplexerChannels) {
        m_state->iio.source[channel] = Source::Model;
    }
}

int Board::SelectedMultiplexer() const {
    const BoardLock lock(*m_state);
    return SelectedChannel(*m_state);
}

void Board::SetIioRaw(int input, int raw) {
    const BoardLock lock(*m_state);
    if (input >= 0 && input < IioInputs) {
        m_state->iio.inputRaw[input] = raw;
    }
}

void Board::SetIioScale(const std::string& text) {
    const BoardLock lock(*m_state);
    std::snprintf(m_state->iio.scale, sizeof(m_state->iio.scale), "%s", text.c_str());
}

CardView Board::Card() const {
    const BoardLock lock(*m_state);
    const CardState& card = m_state->card;
    CardView view;
    view.inserted = card.inserted;
    view.mounted = card.mounted;
    view.mountPoint = card.mountPoint;
    view.full = card.full;
    view.writeProtected = card.writeProtected;
    view.slowMilliseconds = card.slowMilliseconds;
    view.totalBlocks = card.totalBlocks;
    view.freeBlocks = card.freeBlocks;
    view.blockSize = card.blockSize;
    return view;
}

void Board::InsertCard() {
    const BoardLock lock(*m_state);
    SetCardInserted(*m_state, true);
}

void Board::PullCard() {
    const BoardLock lock(*m_state);
    SetCardInserted(*m_state, false);
}

void Board::SetCardFull(bool full) {
    const BoardLock lock(*m_state);
    m_state->card.full = full;
}

void Board::SetCardWriteProtected(bool writeProtected) {
    const BoardLock lock(*m_state);
    m_state->card.writeProtected = writeProtected;
}

void Board::SetCardSlow(int milliseconds) {
    const BoardLock lock(*m_state);
    m_state->card.slowMilliseconds = std::max(milliseconds, 0);
}

void Board::SetCardSpace(std::uint64_t totalBlocks, std::uint64_t freeBlocks, std::uint32_t blockSize) {
    const BoardLock lock(*m_state);
    m_state->card.totalBlocks = totalBlocks;
    m_state->card.freeBlocks = freeBlocks;
    m_state->card.blockSize = blockSize;
}

InstrumentState Board::Instrument() const {
    const BoardLock lock(*m_state);
    return m_state->instrument;
}

InstrumentSettings Board::Settings() const {
    const BoardLock lock(*m_state);
    return EffectiveSettings(*m_state);
}

InstrumentInputs Board::Inputs() const {
    const BoardLock lock(*m_state);
    return InputsOf(*m_state);
}

void Board::SetInstrument(const InstrumentState& state) {
    const BoardLock lock(*m_state);
    m_state->instrument = state;
    Changed(*m_state);
}

void Board::SetSettings(const InstrumentSettings& settings) {
    const BoardLock lock(*m_state);
    m_state->settings = settings;
    Changed(*m_state);
}

void Board::SetAudioPlaying(bool playing) {
    const BoardLock lock(*m_state);
    m_state->audioPlaying = playing;
}

std::vector<TraceEntry> Board::TraceWithTimes() const {
    const BoardLock lock(*m_state);
    std::vector<TraceEntry> list;
    const std::uint64_t first = m_state->traced > TraceLength ? m_state->traced - TraceLength : 0;
    for (std::uint64_t i = std::max(first, m_state->traceStart); i < m_state->traced; ++i) {
        const TraceRecord& record = m_state->trace[i % TraceLength];
        list.push_back({static_cast<double>(record.time) / 1e9, record.text});
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

std::uint64_t Board::TraceCount() const {
    const BoardLock lock(*m_state);
    return m_state->traced;
}

void Board::ClearTrace() {
    const BoardLock lock(*m_state);
    m_state->traceStart = m_state->traced;
}

std::vector<LogLine> Board::Log() const {
    const BoardLock lock(*m_state);
    return ReadLogLines(*m_state);
}

void Board::ClearLog() {
    const BoardLock lock(*m_state);
    RemoveShadowFile(*m_state, "/log");
}

bool Board::WaitUntil(const std::function<bool()>& condition, double realSeconds) const {
    constexpr std::int64_t Slice = 100000000;  // what changes by the passing of time alone is looked at this often
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

TemporaryBoard::TemporaryBoard(const BoardSetup& setup) {
    std::string name = TemporaryFolder() + "/vernicor-XXXXXX";
    std::string error = Because(name, errno);
    if (::mkdtemp(name.data()) != nullptr) {
        m_folder = name;
        m_board = Board::Create(m_folder, setup, error);
    }
    if (m_board == nullptr) {
        std::fprintf(stderr, "board: can't make a temporary one: %s\n", error.c_str());
        std::abort();
    }
    AttachThisProcess(*m_board);
}

TemporaryBoard::~TemporaryBoard() {
    DetachThisProcess();
    m_board->State().run.fetch_add(1);  // what the program has forked sees by this that it is over
    m_board->State().clock.changes.fetch_add(1);
    FutexWakeAll(m_board->State().clock.changes);
    pthread_mutex_destroy(&m_board->State().mutex);
    m_board.reset();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

}  // namespace Bench
