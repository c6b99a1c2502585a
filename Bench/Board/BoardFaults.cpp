// Faults by name. Most are conditions that the devices ask for; a few act once, when their second comes.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "Bench/Board/BoardState.h"
#include "Bench/Board/FaultValues.h"

namespace Bench {

namespace {

struct FaultRow {
    FaultName fault;
    const char* name;
    const char* valueName;
    ValueKind kind;
    const char* description;
};

constexpr FaultRow Rows[] = {
    {FaultName::GpioMissing, "gpio-missing", "", ValueKind::None, "the pin files under /sys/class/gpio are absent"},
    {FaultName::PwmMissing, "pwm-missing", "", ValueKind::None, "the files of PWM chip 0 are absent"},
    {FaultName::SpiMissing, "spi-missing", "", ValueKind::None, "/dev/spidev32765.1 is absent"},
    {FaultName::IioMissing, "iio-missing", "", ValueKind::None, "the files of the on-chip converter are absent"},
    {FaultName::MemMissing, "mem-missing", "", ValueKind::None, "/dev/mem is absent"},
    {FaultName::WriteRefused, "write-refused", "PATHPART", ValueKind::Text,
     "a write to a device file with that text in its path fails with EIO"},
    {FaultName::SpiShort, "spi-short", "", ValueKind::None, "each SPI transfer moves half of its bytes"},
    {FaultName::SpiEcho, "spi-echo", "", ValueKind::None, "each SPI read gives the command back"},
    {FaultName::EocStuck, "eoc-stuck", "", ValueKind::None, "the converter's end of conversion never goes low"},
    {FaultName::FlagStuckHigh, "flag-stuck-high", "", ValueKind::None, "the pump's home flag reads high all round"},
    {FaultName::FlagStuckLow, "flag-stuck-low", "", ValueKind::None, "the pump's home flag reads low all round"},
    {FaultName::MotorStalled, "motor-stalled", "", ValueKind::None, "the pump gets its steps and does not turn"},
    {FaultName::StirStalled, "stir-stalled", "", ValueKind::None, "the stir bar gets its steps and does not turn"},
    {FaultName::ValveStuck, "valve-stuck", "", ValueKind::None, "the sample valve stays closed"},
    {FaultName::LedDead, "led-dead", "", ValueKind::None, "the emitter gives no light"},
    {FaultName::DetectorSaturated, "detector-saturated", "", ValueKind::None, "the detector reads full scale"},
    {FaultName::RailOut, "rail-out", "CHANNEL", ValueKind::Channel,
     "the rail at that multiplexer channel has half its voltage"},
    {FaultName::CardOut, "card-out", "", ValueKind::None, "the card is pulled, mounted or not"},
    {FaultName::CardIn, "card-in", "", ValueKind::None, "the card is put into its slot"},
    {FaultName::CardFull, "card-full", "", ValueKind::None, "the card has no space left"},
    {FaultName::CardSlow, "card-slow", "MS", ValueKind::Number,
     "each write and sync on the card takes that much longer"},
    {FaultName::CardProtected, "card-protected", "", ValueKind::None, "the card is write-protected"},
    {FaultName::ClockBack, "clock-back", "SECONDS", ValueKind::Number, "the wall clock is set back"},
    {FaultName::ReagentEmpty, "reagent-empty", "", ValueKind::None, "the reagent bottle is dry"},
    {FaultName::Bubbles, "bubbles", "", ValueKind::None, "bubbles stick in the light path"},
    {FaultName::FlowStopped, "flow-stopped", "", ValueKind::None, "no sample flows through the open valve"},
    {FaultName::SoundToolsMissing, "sound-tools-missing", "", ValueKind::None,
     "the shell finds no aplay and no amixer"},
    {FaultName::AmixerFails, "amixer-fails", "", ValueKind::None, "amixer ends with status 1"},
    {FaultName::AmplifierDead, "amplifier-dead", "", ValueKind::None,
     "the audio amplifier draws nothing while a clip plays"},
    {FaultName::PumpStageDead, "pump-stage-dead", "", ValueKind::None,
     "the pump's stage neither draws nor turns the pump"},
    {FaultName::StirStageDead, "stir-stage-dead", "", ValueKind::None,
     "the stir motor's stage neither draws nor turns it"},
    {FaultName::IndicatorLedOpen, "indicator-led-open", "NAME", ValueKind::Led,
     "an LED of the remote indicator is broken: blue-, amber- or red-, then analyzer or water"},
    {FaultName::Cable, "cable", "FEET", ValueKind::Number,
     "the remote indicator's cable has that length; 100 without it"},
    {FaultName::GpioTaken, "gpio-taken", "BANK,PIN", ValueKind::Pin,
     "another driver of the kernel holds that line, or all six of the remote indicator: gpio-taken=indicator"},
    {FaultName::LinkCut, "link-cut", "BYTES[,PORT]", ValueKind::Link,
     "each connection, or each to that port, is cut after so many bytes from the other side"},
};

struct ParsedFault {
    std::size_t row = std::size(Rows);
    std::string_view value;
    std::int64_t at = 0;
};

std::size_t RowOf(std::string_view name) {
    const auto* row = std::find_if(std::begin(Rows), std::end(Rows),
                                   [name](const FaultRow& candidate) { return candidate.name == name; });
    return static_cast<std::size_t>(row - std::begin(Rows));
}

bool ValueFits(const FaultRow& row, std::string_view value, std::string& error) {
    const std::string name = row.name;
    if (row.kind == ValueKind::None) {
        error = value.empty() ? "" : name + " takes no value";
    } else if (value.empty() || value.size() >= sizeof(FaultEntry::value)) {
        error = name + " needs a value: " + name + "=" + row.valueName;
    } else if (!IsValue(row.kind, std::string(value))) {
        error = name + ": \"" + std::string(value) + "\" is " + NoSuchValue(row.kind);
    }
    return error.empty();
}

bool Parse(std::string_view text, ParsedFault& fault, std::string& error) {
    error.clear();
    const std::size_t at = text.rfind('@');
    if (at != std::string_view::npos) {
        double seconds = 0.0;
        if (!ParseDouble(std::string(text.substr(at + 1)), seconds) || seconds < 0.0 || seconds > 1e8) {
            error = "\"" + std::string(text) + "\": no number of seconds stands behind @";
            return false;
        }
        fault.at = MonotonicAtStart + static_cast<std::int64_t>(seconds * static_cast<double>(NanoSecondsPerSecond));
    }
    const std::string_view before = text.substr(0, at);
    const std::size_t equals = before.find('=');
    fault.value = equals == std::string_view::npos ? std::string_view{} : before.substr(equals + 1);
    fault.row = RowOf(before.substr(0, equals));
    if (fault.row == std::size(Rows)) {
        error = "unknown fault \"" + std::string(before.substr(0, equals)) + "\"";
        return false;
    }
    if (text.size() >= sizeof(FaultEntry::text)) {
        error = "\"" + std::string(text) + "\" is too long";
        return false;
    }
    return ValueFits(Rows[fault.row], fault.value, error);
}

void Apply(BoardState& state, FaultEntry& entry) {
    entry.applied = true;
    switch (Rows[entry.row].fault) {
        case FaultName::CardOut:
            SetCardInserted(state, false);
            break;
        case FaultName::CardIn:
            SetCardInserted(state, true);
            break;
        case FaultName::CardFull:
            state.card.full = true;
            break;
        case FaultName::CardProtected:
            state.card.writeProtected = true;
            break;
        case FaultName::CardSlow:
            state.card.slowMilliseconds = static_cast<std::int32_t>(std::min(std::strtod(entry.value, nullptr), 1e9));
            break;
        default:
            break;
    }
}

// The clock knows its jump beforehand, since it is read without looking at the faults.
void AnnounceJump(BoardState& state, const FaultEntry& entry) {
    if (Rows[entry.row].fault == FaultName::ClockBack) {
        const double nanoSeconds = std::strtod(entry.value, nullptr) * static_cast<double>(NanoSecondsPerSecond);
        JumpClockAt(state.clock, entry.at, -static_cast<std::int64_t>(nanoSeconds));
    }
}

void Undo(BoardState& state, FaultName fault) {
    switch (fault) {
        case FaultName::CardOut:
            SetCardInserted(state, true);
            break;
        case FaultName::CardFull:
            state.card.full = false;
            break;
        case FaultName::CardProtected:
            state.card.writeProtected = false;
            break;
        case FaultName::CardSlow:
            state.card.slowMilliseconds = 0;
            break;
        default:
            break;
    }
}

// The flag's level may follow the fault at once.
class FlagWatch {
public:
    explicit FlagWatch(BoardState& state) : m_state(state), m_before(PinLevel(state, 1, 18)) {}
    ~FlagWatch() {
        const bool after = PinLevel(m_state, 1, 18);
        if (after != m_before) {
            NoteEdge(m_state.pins[1][18], after);
        }
        Changed(m_state);
    }
    FlagWatch(const FlagWatch&) = delete;
    FlagWatch& operator=(const FlagWatch&) = delete;

private:
    BoardState& m_state;
    bool m_before;
};

}  // namespace

bool FaultActive(const BoardState& state, FaultName name) {
    return std::any_of(std::begin(state.faults), std::end(state.faults),
                       [name](const FaultEntry& entry) { return entry.applied && Rows[entry.row].fault == name; });
}

bool WriteRefused(const BoardState& state, Node node) {
    char space[PathLength] = {};
    Buffer path{space, sizeof(space)};
    NodePath(node, path);
    const std::string_view text(space, path.used);
    return std::any_of(std::begin(state.faults), std::end(state.faults), [text](const FaultEntry& entry) {
        return entry.applied && Rows[entry.row].fault == FaultName::WriteRefused &&
               text.find(entry.value) != std::string_view::npos;
    });
}

const char* NextFaultValue(const BoardState& state, FaultName name, std::size_t& next) {
    while (next < std::size(state.faults)) {
        const FaultEntry& entry = state.faults[next++];
        if (entry.applied && Rows[entry.row].fault == name) {
            return entry.value;
        }
    }
    return nullptr;
}

bool GpioTaken(const BoardState& state, int bank, int pin) {
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, FaultName::GpioTaken, next)) {
        int takenBank = 0;
        int takenPin = 0;
        if (value == AllIndicatorLines ? IsIndicatorLine(bank, pin)
                                       : ParsePin(value, takenBank, takenPin) && takenBank == bank && takenPin == pin) {
            return true;
        }
    }
    return false;
}

std::uint64_t LinkLength(const BoardState& state, int port) {
    std::uint64_t length = std::numeric_limits<std::uint64_t>::max();
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, FaultName::LinkCut, next)) {
        std::uint64_t bytes = 0;
        int only = 0;
        if (ParseLink(value, bytes, only) && (only == 0 || only == port)) {
            length = std::min(length, bytes);
        }
    }
    return length;
}

bool RailOut(const BoardState& state, int channel) {
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, FaultName::RailOut, next)) {
        if (std::strtol(value, nullptr, 10) == channel) {
            return true;
        }
    }
    return false;
}

std::int64_t NextFaultAt(const BoardState& state) {
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (const FaultEntry& entry : state.faults) {
        if (entry.used && !entry.applied) {
            next = std::min(next, entry.at);
        }
    }
    return next;
}

void ApplyDueFaults(BoardState& state, std::int64_t now) {
    const FlagWatch watch(state);
    for (FaultEntry& entry : state.faults) {
        if (entry.used && !entry.applied && entry.at <= now) {
            Apply(state, entry);
        }
    }
}

const std::vector<FaultInfo>& Board::KnownFaults() {
    static const std::vector<FaultInfo> known = [] {
        std::vector<FaultInfo> list;
        for (const FaultRow& row : Rows) {
            list.push_back({row.name, row.valueName, row.description});
        }
        return list;
    }();
    return known;
}

bool Board::CheckFault(const std::string& text, std::string& error) {
    ParsedFault fault;
    return Parse(text, fault, error);
}

bool Board::SetFault(const std::string& text, std::string& error) {
    ParsedFault fault;
    if (!Parse(text, fault, error)) {
        return false;
    }
    const BoardLock lock(*m_state);
    auto* entry = std::find_if(std::begin(m_state->faults), std::end(m_state->faults),
                               [](const FaultEntry& candidate) { return !candidate.used; });
    if (entry == std::end(m_state->faults)) {
        error = "too many faults are set";
        return false;
    }
    *entry = FaultEntry{};
    entry->used = true;
    entry->row = static_cast<std::int32_t>(fault.row);
    entry->at = std::max(fault.at, MonotonicNow(m_state->clock));
    std::snprintf(entry->text, sizeof(entry->text), "%s", text.c_str());
    std::snprintf(entry->value, sizeof(entry->value), "%.*s", static_cast<int>(fault.value.size()), fault.value.data());
    AnnounceJump(*m_state, *entry);
    BringUpToDate(*m_state);
    Changed(*m_state);
    return true;
}

bool Board::ClearFault(const std::string& name, std::string& error) {
    const std::size_t row = RowOf(name);
    if (row == std::size(Rows)) {
        error = "unknown fault \"" + name + "\"";
        return false;
    }
    const BoardLock lock(*m_state);
    const FlagWatch watch(*m_state);
    bool applied = false;
    for (FaultEntry& entry : m_state->faults) {
        if (entry.used && static_cast<std::size_t>(entry.row) == row) {
            applied = applied || entry.applied;
            if (Rows[row].fault == FaultName::ClockBack && !entry.applied) {
                CancelJump(m_state->clock);
            }
            entry = FaultEntry{};
        }
    }
    if (applied) {
        Undo(*m_state, Rows[row].fault);
    }
    return true;
}

std::vector<ActiveFault> Board::Faults() const {
    const BoardLock lock(*m_state);
    std::vector<ActiveFault> list;
    for (const FaultEntry& entry : m_state->faults) {
        if (entry.used) {
            list.push_back({entry.text, entry.applied});
        }
    }
    return list;
}

}  // namespace Bench
