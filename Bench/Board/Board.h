// The virtual board as a test or a program of the bench uses it. The board's state is one mapped file in a bench
// folder; all objects of this class, in any process, see and change the same board, and every operation may be called
// from any thread. The program on the bench uses the board through libboard.so, which replaces calls of libc: preloaded
// with VERNICOR_BENCH set to the folder, or linked and attached by AttachThisProcess.
//
// Times are simulated unless stated. The texts of faults and calls are those that the console shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Bench/Instrument/Instrument.h"

namespace Bench {

struct BoardState;  // the content of the mapped file

constexpr int Banks = 4;
constexpr int PinsPerBank = 32;
constexpr int PwmChannels = 4;
constexpr int IioInputs = 12;
constexpr int MultiplexerChannels = 16;

enum class Edge { None, Rising, Falling, Both };

struct PinView {
    bool claimed = false;  // exported through the pin files
    bool output = false;
    bool latch = false;          // what the program last set, by file or by register
    bool level = false;          // of the line
    std::optional<bool> driven;  // from outside; nothing on an output
    Edge edge = Edge::None;
};

struct PwmView {
    bool exported = false;
    bool enabled = false;
    std::uint64_t period = 0;  // nanoseconds
    std::uint64_t duty = 0;    // nanoseconds
};

// What the bus does with one read or write of the program, instead of the converter's answer.
struct SpiAnswer {
    enum class Kind { Words, Echo, Short, Fail };
    Kind kind = Kind::Words;
    std::uint32_t words = 0;  // Words: first word in the high half
    std::size_t bytes = 0;    // Short: that many are moved
    int error = 0;            // Fail: errno

    static SpiAnswer Words(std::uint16_t first, std::uint16_t second);
    static SpiAnswer Raw(std::uint32_t words);   // both words at once
    static SpiAnswer Count(std::int32_t count);  // the words of a good reading, -2^24 to 2^24 - 1
    static SpiAnswer Echo();                     // the last word written, then 0
    static SpiAnswer Short(std::size_t bytes);
    static SpiAnswer Fail(int error);
};

enum class EndOfConversion { Normal, StuckHigh, StuckLow };

struct CardView {
    bool inserted = true;
    bool mounted = false;
    std::string mountPoint;  // as the program named it; empty when not mounted
    bool full = false;
    bool writeProtected = false;
    int slowMilliseconds = 0;  // for each write and each sync
    std::uint64_t totalBlocks = 0;
    std::uint64_t freeBlocks = 0;
    std::uint32_t blockSize = 4096;
};

struct TraceEntry {
    double seconds = 0.0;  // since the start of the run
    std::string text;
    double deviceSeconds = 0.0;  // real, spent so far in the board's device files, its log and its own work
};

// One line of the system log, as the program gave it.
struct LogLine {
    std::string ident;
    int options = 0;
    int facility = 0;
    int priority = 0;
    std::string format;
    std::string text;
};

struct FaultInfo {
    std::string name;         // "card-slow"
    std::string value;        // the value after "=": "MS"; empty if it takes none
    std::string description;  // one line
};

struct ActiveFault {
    std::string text;     // as it was set
    bool active = false;  // false: its second is still to come
};

// A run in exact time: a simulation in the program's process sets the clock and chooses which thread runs (see
// Bench/Deterministic). The speed is then of no meaning.
struct ExactSetup {
    std::uint64_t seed = 1;
    std::string policy = "random";  // as Bench/Deterministic/Policy.h says
    std::string traceFile;          // gets the events number `traceFrom` to `traceTo`; empty: none
    std::uint64_t traceFrom = 1;
    std::uint64_t traceTo = UINT64_MAX;
};

// Where such a run is.
struct ExactView {
    bool over = false;       // the program has ended, or could not go on
    bool quiet = false;      // all threads wait, none with a deadline
    std::uint64_t hash = 0;  // of all events so far
    std::uint64_t events = 0;
    std::uint64_t decisions = 0;  // of the present process, as the switches
    std::uint64_t switches = 0;
    std::string waits;    // a line for each thread: what it waits for
    std::string failure;  // why the simulation could not go on; mostly empty
};

// The peer's end of a link in exact time.
struct WireView {
    std::uint32_t connections = 0;  // so far
    bool connected = false;
    std::string bytes;  // that the program has sent on the newest connection since the last look
};

// How a run begins.
struct BoardSetup {
    double speed = 1.0;                      // simulated seconds for one real second, 0.1 to 1000
    std::int64_t startSeconds = 1356955199;  // Unix time; 2012-12-31 11:59:59 UTC
    bool noise = true;
    std::uint32_t seed = 1;
    std::optional<ExactSetup> exact;
};

class Board {
public:
    // Creates the folder if needed, and a new board in it. Returns null with the reason in `error` on failure.
    static std::unique_ptr<Board> Create(const std::string& folder, const BoardSetup& setup, std::string& error);
    // The board of the folder. Returns null with the reason in `error` on failure.
    static std::unique_ptr<Board> Open(const std::string& folder, std::string& error);
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    const std::string& Folder() const { return m_folder; }
    // Starts a new run: everything at its power-on state, faults cleared, trace and log empty. Files on the card, in
    // usr/share/vorn and in var/log/vorn stay.
    void Reset(const BoardSetup& setup);

    // Clock.
    double Speed() const;
    // Limited to 0.1 to 1000. Waits in progress follow within 0.2 s of real time. Without effect in exact time.
    void SetSpeed(double speed);
    void HoldSpeed(bool hold);             // held: a wait with a timeout is one wait of the kernel, as on an instrument
    double Seconds() const;                // since the start of the run, without jumps
    std::int64_t WallNanoSeconds() const;  // CLOCK_REALTIME as the program sees it
    void JumpClock(double seconds);        // below 0 sets the wall clock back

    // Exact time. The board is looked at and changed only before the program starts and after this operation: it lets
    // the program run until that moment, in seconds of the run, and returns when it pauses there, or earlier because of
    // a wire. It returns false if the program has not paused after that many real seconds, so that the caller can see
    // whether its process still exists.
    bool RunUntil(double seconds, double realSeconds = 1.0);
    bool IsExact() const;
    void BeginProgram();  // before each start of a program: it pauses at once, and no wire is connected
    ExactView Exact() const;

    // The links of a run in exact time, by the program's port. A peer acts in a pause; each connection, piece or end
    // from the program makes one. What it gives arrives that many simulated seconds later, in the same order. The last
    // two return false without a connection or if too much is unread.
    bool LayWire(int port);  // the peer listens; false if there are four wires
    WireView TakeFromWire(int port);
    bool GiveToWire(int port, std::string_view bytes, double seconds = 0.0);
    bool EndWire(int port, bool abort, double seconds = 0.0);

    // Pins, by bank 0 to 3 and pin 0 to 31.
    PinView Pin(int bank, int pin) const;
    void DrivePin(int bank, int pin, bool level);
    void ReleasePin(int bank, int pin);          // the board's own level again
    std::uint32_t OutputStatus(int bank) const;  // register of output latches
    std::uint32_t DataStatus(int bank) const;    // register of levels

    PwmView Pwm(int channel) const;

    // The 24-bit converter and its bus.
    std::uint16_t LastCommand() const;                           // last command word
    std::size_t CommandCount() const;                            // words written so far in the run
    void ScriptSpiRead(const std::vector<SpiAnswer>& answers);   // one for each of the next reads; then the model again
    void ScriptSpiWrite(const std::vector<SpiAnswer>& answers);  // Short and Fail; Words lets the write through
    void SetConverterChannel(int channel, std::int32_t count);   // 1 to 199, and 200 for its temperature
    void SetEndOfConversion(EndOfConversion behavior);
    void SetConversionTime(int milliseconds);  // 160

    // The on-chip converter: raw counts by multiplexer channel 0 to 15 (its input 6), or by input.
    void SetMultiplexerRaw(int channel, int raw);
    void SetMultiplexerVolts(int channel, double volts);
    void ReleaseMultiplexer(int channel);  // the instrument's own voltage again
    int SelectedMultiplexer() const;
    void SetIioRaw(int input, int raw);
    void SetIioScale(const std::string& text);  // content of in_voltage_scale

    // The card. Its files are in Folder() + "/card".
    CardView Card() const;
    void InsertCard();
    void PullCard();
    void SetCardFull(bool full);
    void SetCardWriteProtected(bool writeProtected);
    void SetCardSlow(int milliseconds);
    void SetCardSpace(std::uint64_t totalBlocks, std::uint64_t freeBlocks, std::uint32_t blockSize);

    // Network. The program finds the hosts "localhost" and its own name, both at 127.0.0.1. It reaches only the ports
    // that are mapped to ports of this machine's loopback interface, and with an open loopback all others unchanged.
    // Any other connection is refused or unreachable at once; nothing leaves the machine. A socket is the program's
    // until it is bound. The interfaces are "eth0", with the address 02:1A:6C:00:3E:F5, and "lo".
    bool MapPort(int instrumentPort, int realPort);  // false if either is invalid or 16 ports are mapped
    void UnmapPort(int instrumentPort);
    void SetLoopbackOpen(bool open);
    void SetHostName(const std::string& name);  // "analyzer"; cut to 64 characters

    // The instrument at this moment.
    InstrumentState Instrument() const;
    InstrumentSettings Settings() const;  // including the active faults
    InstrumentInputs Inputs() const;
    void SetInstrument(const InstrumentState& state);
    void SetSettings(const InstrumentSettings& settings);
    void SetAudioPlaying(bool playing);

    // Whether a person sees that LED of the remote indicator lit.
    bool IndicatorLit(IndicatorLed led) const;

    // Sound. Command lines of aplay and amixer as the program ran them, oldest first: "aplay -q /usr/share/x.wav",
    // "amixer set -q 'Output Mixer HiFi' mute". An argument with other characters than letters, digits and _./,%:=+- is
    // in single quotes. The last 512 are kept, up to 255 characters of each.
    std::vector<std::string> SoundCalls() const;
    void ClearSoundCalls();
    bool SoundPlaying() const;        // until the last of several clips ends
    std::string PlayingClip() const;  // file name of the clip started last; empty in silence
    std::string LoopingClip() const;  // the same of a clip that a child of the program repeats, also in its pauses

    // What the program did, oldest first: "PATH=VALUE" for a device file, followed by " !EBUSY" if refused;
    // "mem 0xfffff430=0x00000001"; "ioctl PATH 0x40016b01=0"; "spi write a080"; "spi read 1234 5678";
    // "spi transfer a080 > 1234"; "mount SOURCE TARGET TYPE FLAGS"; "umount TARGET"; "card FILE BYTES" when they are
    // written; "run aplay -q FILE"; "connect ADDRESS:PORT". The ring keeps the last 8192.
    std::vector<std::string> Trace() const;
    std::vector<TraceEntry> TraceWithTimes() const;
    std::uint64_t TraceCount() const;  // of the whole run, including those no longer kept
    void ClearTrace();

    // System log.
    std::vector<LogLine> Log() const;
    void ClearLog();

    // Faults, as NAME or NAME=VALUE, each optionally with @SECONDS of the run. Return false with the reason in `error`.
    static const std::vector<FaultInfo>& KnownFaults();
    static bool CheckFault(const std::string& text, std::string& error);
    bool SetFault(const std::string& text, std::string& error);
    bool ClearFault(const std::string& name, std::string& error);
    std::vector<ActiveFault> Faults() const;

    // Makes the Nth call of that kind from now (1: the next) fail with `error`, among those on the board's files and
    // for its wall clock. Returns false for an unknown kind. "allocation" is unknown in a sanitizer build, and counts
    // only in a program that loads the library of Bench/Board/Allocations before the board.
    static const std::vector<std::string>& CallKinds();
    bool FailCall(const std::string& kind, int n, int error);
    // Kills the process that makes the Nth call of that kind from now, before the call does anything.
    bool KillAtCall(const std::string& kind, int n);
    std::uint64_t CallCount(const std::string& kind) const;  // calls on the board's files so far in the run

    // Waits until the condition holds; it is checked whenever the board changes. Returns false after that many real
    // seconds, which only guard against hanging.
    bool WaitUntil(const std::function<bool()>& condition, double realSeconds = 60.0) const;
    bool WaitForTrace(const std::string& text, double realSeconds = 60.0) const;

    BoardState& State() const { return *m_state; }

private:
    Board(std::string folder, BoardState* state);
    bool Deliver(int port, int kind, std::string_view bytes, double seconds);

    std::string m_folder;
    BoardState* m_state;
};

// Attaches this process's hooks to the board, or detaches them. No other thread may be in a hook at that moment, and no
// file of the board attached before may be open.
void AttachThisProcess(const Board& board);
void DetachThisProcess();

// A new board in a new folder below TMPDIR, or in memory if that is unset, with this process attached. The destructor
// removes everything.
class TemporaryBoard {
public:
    explicit TemporaryBoard(const BoardSetup& setup = {});
    ~TemporaryBoard();
    TemporaryBoard(const TemporaryBoard&) = delete;
    TemporaryBoard& operator=(const TemporaryBoard&) = delete;

    Board& Get() const { return *m_board; }

private:
    std::string m_folder;
    std::unique_ptr<Board> m_board;
};

}  // namespace Bench
