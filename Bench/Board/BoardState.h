// What lies in the mapped file, and the rules of the board over it, one family of devices a source file. All but the
// clock is read and changed under BoardLock, which also brings the instrument and the faults up to the present.
// Whatever a hook calls here leaves errno alone and gives an error number, 0 for success.
#pragma once

#include <pthread.h>
#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "Bench/Board/Board.h"
#include "Bench/Board/OwnAllocations.h"
#include "Bench/Instrument/Instrument.h"

namespace Bench {

// ---- Clock. Read without a lock: a writer makes `sequence` odd, changes, makes it even.
struct ClockState {
    std::atomic<std::uint32_t> sequence{0};
    std::atomic<std::int64_t> realAnchor{0};   // real CLOCK_MONOTONIC, nanoseconds
    std::atomic<std::int64_t> boardAnchor{0};  // simulated CLOCK_MONOTONIC at that moment
    std::atomic<std::int64_t> speed{1000000};  // millionths
    std::atomic<std::int64_t> wallOffset{0};   // CLOCK_REALTIME less CLOCK_MONOTONIC
    std::atomic<std::int64_t> jumpAt{0};       // from this moment on ...
    std::atomic<std::int64_t> jumpBy{0};       // ... the wall clock is that much further
    std::atomic<std::uint32_t> changes{0};     // futex word: speed or wall clock set
    std::atomic<bool> held{false};             // the speed stays, so a wait need not be cut into pieces
};

constexpr std::int64_t NanoSecondsPerSecond = 1000000000;
constexpr std::int64_t MonotonicAtStart = 1000 * NanoSecondsPerSecond;

std::int64_t RealNanoSeconds();                                        // CLOCK_MONOTONIC of the machine
std::int64_t MonotonicNow(const ClockState& clock);                    // as the program sees it
std::int64_t WallNow(const ClockState& clock);                         // as the program sees it
std::int64_t ToReal(const ClockState& clock, std::int64_t simulated);  // a length, rounded up
void StartClock(ClockState& clock, double speed, std::int64_t startSeconds);
void SetClockSpeed(ClockState& clock, double speed);
// From that moment on the wall clock is so much further. One jump can wait: an earlier one that still does happens now.
void JumpClockAt(ClockState& clock, std::int64_t at, std::int64_t by);
void CancelJump(ClockState& clock);  // the one that waits
// Sleeps on a futex word of any process until it differs, or for that many real nanoseconds. 0, ETIMEDOUT, EINTR.
int FutexWait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t realNanoSeconds);
void FutexWakeAll(const std::atomic<std::uint32_t>& word);

// ---- Devices.
struct PinState {
    bool claimed = false;
    bool output = false;
    bool latch = false;
    std::int8_t driven = -1;
    Edge edge = Edge::None;
    std::uint32_t rising = 0;  // edges seen so far
    std::uint32_t falling = 0;
};

struct PwmState {
    bool exported = false;
    bool enabled = false;
    std::uint64_t period = 0;
    std::uint64_t duty = 0;
};

constexpr std::size_t SpiScriptLength = 512;
constexpr int ConverterChannels = 201;

struct SpiScript {
    std::uint32_t next = 0;
    std::uint32_t count = 0;
    SpiAnswer answers[SpiScriptLength];
};

struct SpiState {
    std::uint8_t mode = 0;
    std::uint8_t bits = 8;
    std::uint32_t speed = 500000;
    std::uint16_t lastCommand = 0;
    std::uint64_t commands = 0;
    bool converting = false;
    std::int64_t conversionEnds = 0;
    std::int32_t conversionMilliseconds = 160;
    std::uint32_t result = 0;
    EndOfConversion endOfConversion = EndOfConversion::Normal;
    std::int32_t counts[ConverterChannels] = {};
    SpiScript reads;
    SpiScript writes;
};

enum class Source : std::uint8_t { Model, Raw, Volts };

struct IioState {
    Source source[MultiplexerChannels] = {};
    int raw[MultiplexerChannels] = {};
    double volts[MultiplexerChannels] = {};
    int inputRaw[IioInputs] = {};
    char scale[32] = {};
};

constexpr std::size_t PathLength = 512;

struct CardState {
    bool inserted = true;
    bool mounted = false;
    bool full = false;
    bool writeProtected = false;
    std::int32_t slowMilliseconds = 0;
    std::uint64_t totalBlocks = 1953125;  // 8 GB
    std::uint64_t freeBlocks = 1900000;
    std::uint32_t blockSize = 4096;
    char mountPoint[PathLength] = {};
};

constexpr std::size_t MaximalFaults = 64;

struct FaultEntry {
    bool used = false;
    bool applied = false;
    std::int32_t row = 0;  // of the table in BoardFaults.cpp
    std::int64_t at = 0;
    char value[64] = {};
    char text[128] = {};
};

enum class Call : std::uint8_t {
    Open,
    Close,
    Read,
    Write,
    Seek,
    Sync,
    Ioctl,
    Poll,
    Mmap,
    Fopen,
    Fclose,
    Opendir,
    Stat,
    Statfs,
    Mount,
    Umount,
    Setmntent,
    Access,
    Mkdir,
    Remove,
    Rename,
    Truncate,
    Chmod,
    ClockGettime,
    Fork,
    System,
    Socket,
    Connect,
    Send,
    Receive,
    SetOption,
    GetOption,
    Shutdown,
    HostByName,
    HostByAddress,
    ThreadCreate,
    Allocation,
    Count
};

// Atomic for the clock and for memory, whose hooks may not lock.
struct CallState {
    std::atomic<std::uint64_t> count{0};
    std::atomic<std::int32_t> failIn{0};  // 1: the next; 0 or less: none
    std::atomic<std::int32_t> error{0};
};

// ---- Sound.
constexpr std::size_t SoundCallsKept = 512;
constexpr std::size_t SoundLineLength = 256;
constexpr std::size_t MaximalPlayers = 16;

// A clip plays until its end comes, so that a player which is killed leaves nothing behind.
struct PlayerEntry {
    std::int64_t ends = 0;
    std::uint64_t number = 0;
    pid_t loop = 0;  // the forked child that had it played; 0: none
    char name[64] = {};
};

struct SoundState {
    PlayerEntry players[MaximalPlayers];
    std::uint64_t played = 0;
    std::uint64_t called = 0;   // of the whole run
    std::uint64_t cleared = 0;  // the first that was not cleared
    char calls[SoundCallsKept][SoundLineLength] = {};
};

// ---- Network.
constexpr std::size_t MaximalPorts = 16;
constexpr std::size_t HostNameLength = 64;

struct PortEntry {
    int instrument = 0;  // 0: free
    int real = 0;
};

struct NetworkState {
    PortEntry ports[MaximalPorts];
    bool open = false;  // ports that are not mapped are reached as they are
    char hostName[HostNameLength + 1] = "analyzer";
};

constexpr std::size_t TraceLength = 8192;
constexpr std::size_t TraceTextLength = 248;

// Without initial values: two megabytes that a fresh file holds as zeros anyway.
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
    std::atomic<std::uint32_t> run{0};      // another number after each reset and at the end of the board
    char folder[PathLength] = {};
    ClockState clock;

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

    FaultEntry faults[MaximalFaults];
    CallState calls[static_cast<std::size_t>(Call::Count)];
    std::atomic<std::uint32_t> deviceCalls{0};  // under way
    std::atomic<std::int64_t> deviceTime{0};    // see DeviceTime; less the beginning of those under way
    std::uint64_t traced = 0;                   // of the whole run
    std::uint64_t traceStart = 0;               // the first that was not cleared
    TraceRecord trace[TraceLength];
};

// Robust against the death of another process that held it.
class BoardLock {
public:
    explicit BoardLock(BoardState& state);
    ~BoardLock();
    BoardLock(const BoardLock&) = delete;
    BoardLock& operator=(const BoardLock&) = delete;

private:
    BoardState& m_state;
    const OwnAllocations m_own;
};

void InitialiseState(BoardState& state, const char* folder, const BoardSetup& setup);  // the mutex apart
void Changed(BoardState& state);  // wakes whoever waits for the board
// Applies due faults, lets the instrument run on and counts the edges of its flag, up to now.
void BringUpToDate(BoardState& state);

// One call on a device file or on the system log, or what the board does for itself within another: from here to its
// end, or until it turns out to be none. Where several threads are in one, the time counts once.
class DeviceCall {
public:
    explicit DeviceCall(BoardState& state, bool isDevice = true);
    ~DeviceCall() { Is(false); }
    DeviceCall(const DeviceCall&) = delete;
    DeviceCall& operator=(const DeviceCall&) = delete;

    void Is(bool device);

private:
    BoardState& m_state;
    bool m_device = false;
};

std::int64_t DeviceTime(const BoardState& state);  // real nanoseconds in such calls up to now

[[gnu::format(printf, 2, 3)]] void TraceAct(BoardState& state, const char* format, ...);
const char* ErrorName(int error);  // "EBUSY"

// ---- Nodes: the files of devices.
enum class Family : std::uint8_t { None, Gpio, Pwm, Spi, Iio, Memory, Regular, Card, Socket };

struct Node {
    Family family = Family::None;
    std::uint8_t file = 0;    // of the family
    std::uint8_t first = 0;   // bank, channel, input or upper half of a port
    std::uint8_t second = 0;  // pin or lower half of a port
};

bool IsDevice(Node node);
bool IsCharacterDevice(Node node);

struct Buffer {
    char* data;
    std::size_t size;
    std::size_t used = 0;
};
[[gnu::format(printf, 2, 3)]] void Put(Buffer& buffer, const char* format, ...);

// The file of that name below the family's folder; family None where there is none now.
Node FindGpioNode(const BoardState& state, std::string_view name);
Node FindPwmNode(const BoardState& state, std::string_view name);
Node FindIioNode(const BoardState& state, std::string_view name);
Node FindNode(const BoardState& state, std::string_view path);  // by absolute path

bool NodeAlive(const BoardState& state, Node node);  // false once its pin or channel was released
void NodePath(Node node, Buffer& path);
void NodeContent(BoardState& state, Node node, Buffer& content);
// What the program wrote in one call. Traces it; 0 or an error number.
int NodeWrite(BoardState& state, Node node, std::string_view data);

void GpioContent(BoardState& state, Node node, Buffer& content);
int GpioWrite(BoardState& state, Node node, std::string_view text);
void GpioPath(Node node, Buffer& path);
bool PinLevel(const BoardState& state, int bank, int pin);
void SetPinLatch(BoardState& state, int bank, int pin, bool level);
void SetPinDriven(BoardState& state, int bank, int pin, int driven);  // -1: released
std::uint32_t EdgeCount(const BoardState& state, int bank, int pin);  // by the pin's edge setting
void NoteEdge(PinState& pin, bool level);
bool IsGpioValue(Node node);

void PwmContent(BoardState& state, Node node, Buffer& content);
int PwmWrite(BoardState& state, Node node, std::string_view text);
void PwmPath(Node node, Buffer& path);

void IioContent(BoardState& state, Node node, Buffer& content);
void IioPath(Node node, Buffer& path);
int SelectedChannel(const BoardState& state);

// Moved bytes in `moved`.
int SpiWrite(BoardState& state, const void* data, std::size_t size, std::size_t& moved);
int SpiRead(BoardState& state, void* data, std::size_t size, std::size_t& moved);
int SpiIoctl(BoardState& state, unsigned long request, void* argument, int& result);
void FinishConversion(BoardState& state);  // takes the reading
bool EndOfConversionLevel(const BoardState& state);

constexpr std::size_t RegisterPageSize = 4096;
void FillRegisterPage(BoardState& state, std::uint32_t page, std::uint32_t* words);
void ApplyRegisterPage(BoardState& state, std::uint32_t page, const std::uint32_t* words);
std::uint32_t OutputStatusOf(const BoardState& state, int bank);
std::uint32_t DataStatusOf(const BoardState& state, int bank);

// ---- The card.
bool CardPresent(const BoardState& state);
void SetCardInserted(BoardState& state, bool inserted);
int MountCard(BoardState& state, const char* source, const char* target, const char* resolvedTarget, const char* type,
              unsigned long flags);
int UnmountCard(BoardState& state, const char* target, bool inUse);
void WriteMountTable(const BoardState& state);
int CardAccessError(const BoardState& state, bool writing);  // what a file on the card answers now

// ---- Remote indicator.
std::uint8_t IndicatorLinesHigh(const BoardState& state);                    // bit by IndicatorLed
void BreakIndicator(const BoardState& state, InstrumentSettings& settings);  // by its faults
bool IsIndicatorLed(std::string_view name);
bool IsIndicatorLine(int bank, int pin);

// ---- Network.
// Where the program's connection to that port of the loopback interface leads; 0 where nobody listens.
int RealPort(const BoardState& state, int port);
// Bytes after which a connection to that port is cut; the largest number for never.
std::uint64_t LinkLength(const BoardState& state, int port);

// ---- Sound.
void NoteSoundCall(BoardState& state, const char* line);
bool SoundPlays(const BoardState& state);
// Returns when the clip or the run has ended. Not under the lock. `loop` is the forked child that asked for it, or 0.
void PlayClip(BoardState& state, const char* name, std::int64_t nanoSeconds, pid_t loop);

// ---- Instrument and faults.
InstrumentInputs InputsOf(const BoardState& state);
InstrumentSettings EffectiveSettings(const BoardState& state);
double ChannelVolts(const BoardState& state, int channel);

enum class FaultName : std::uint8_t {
    GpioMissing,
    PwmMissing,
    SpiMissing,
    IioMissing,
    MemMissing,
    WriteRefused,
    SpiShort,
    SpiEcho,
    EocStuck,
    FlagStuckHigh,
    FlagStuckLow,
    MotorStalled,
    StirStalled,
    ValveStuck,
    LedDead,
    DetectorSaturated,
    RailOut,
    CardOut,
    CardIn,
    CardFull,
    CardSlow,
    CardProtected,
    ClockBack,
    ReagentEmpty,
    Bubbles,
    FlowStopped,
    SoundToolsMissing,
    AmixerFails,
    AmplifierDead,
    PumpStageDead,
    StirStageDead,
    IndicatorLedOpen,
    Cable,
    GpioTaken,
    LinkCut
};

bool FaultActive(const BoardState& state, FaultName name);
bool WriteRefused(const BoardState& state, Node node);
bool RailOut(const BoardState& state, int channel);
bool GpioTaken(const BoardState& state, int bank, int pin);
// The values of an active fault, one after the other; `next` begins at 0. Null behind the last.
const char* NextFaultValue(const BoardState& state, FaultName name, std::size_t& next);
void ApplyDueFaults(BoardState& state, std::int64_t now);
std::int64_t NextFaultAt(const BoardState& state);  // the largest number where none is pending

// Counts the call and says whether it must fail: 0 or the error number.
int CountCall(BoardState& state, Call call);

// ---- Shadow tree: real files of the bench folder that stand for the devices in directories, stat and access.
void MakeShadowDirectory(const BoardState& state, const char* path, std::initializer_list<const char*> files);
void RemoveShadowDirectory(const BoardState& state, const char* path, std::initializer_list<const char*> files);
void MakeShadowFile(const BoardState& state, const char* path);
void RemoveShadowFile(const BoardState& state, const char* path);

// ---- The log file in the bench folder.
void AppendLogLine(const BoardState& state, const LogLine& line);
std::vector<LogLine> ReadLogLines(const BoardState& state);

}  // namespace Bench
