#include "Bench/Board/BoardFaults.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include "Bench/Board/BoardState.h"
#include "Bench/Board/FaultValues.h"

namespace Bench {

namespace {

constexpr double MaxSeconds = 1e8;

struct ParsedFault {
    std::size_t row = std::size(FaultRows);
    std::string_view value;
    std::int64_t at = 0;
};

std::size_t RowOf(std::string_view name) {
    const auto* row = std::find_if(std::begin(FaultRows), std::end(FaultRows),
                                   [name](const FaultRow& candidate) { return candidate.name == name; });
    return static_cast<std::size_t>(row - std::begin(FaultRows));
}

bool ValueFits(const FaultRow& row, std::string_view value, std::string& error) {
    const std::string name(row.name);
    if (row.traits.value == ValueKind::None) {
        error = value.empty() ? "" : name + " takes no value";
    } else if (value.empty() || value.size() >= sizeof(FaultEntry::value)) {
        error = name + " needs a value: " + name + "=" + row.traits.valueName;
    } else if (!IsValue(row.traits.value, std::string(value))) {
        error =
            name + ": invalid value \"" + std::string(value) + "\" (expected " + ExpectedValue(row.traits.value) + ")";
    }
    return error.empty();
}

bool Parse(std::string_view text, ParsedFault& fault, std::string& error) {
    error.clear();
    const std::size_t at = text.rfind('@');
    if (at != std::string_view::npos) {
        double seconds = 0.0;
        if (!ParseDouble(std::string(text.substr(at + 1)), seconds) || seconds < 0.0 || seconds > MaxSeconds) {
            error = "\"" + std::string(text) + "\": invalid time after @ (expected seconds from 0 to 100000000)";
            return false;
        }
        fault.at = MonotonicAtStart + static_cast<std::int64_t>(seconds * static_cast<double>(NanoSecondsPerSecond));
    }
    const std::string_view before = text.substr(0, at);
    const std::size_t equals = before.find('=');
    fault.value = equals == std::string_view::npos ? std::string_view{} : before.substr(equals + 1);
    fault.row = RowOf(before.substr(0, equals));
    if (fault.row == std::size(FaultRows)) {
        error = "unknown fault \"" + std::string(before.substr(0, equals)) + "\"";
        return false;
    }
    if (text.size() >= sizeof(FaultEntry::text)) {
        error = "\"" + std::string(text) + "\" is too long";
        return false;
    }
    return ValueFits(FaultRows[fault.row], fault.value, error);
}

bool Is(const FaultEntry& entry, Fault fault) { return entry.row == fault.row; }

// What happens once, when the fault begins (`begins`) or is cleared.
void SwitchFault(BoardState& state, const FaultEntry& entry, bool begins) {
    if (const auto member = FaultRows[entry.row].traits.card; member != nullptr) {
        state.card.*member = begins;
    } else if (Is(entry, "card-out") || (Is(entry, "card-in") && begins)) {
        SetCardInserted(state, Is(entry, "card-out") != begins);
    } else if (Is(entry, "card-slow")) {
        const double wait = begins ? std::min(std::strtod(entry.value, nullptr), 1e9) : 0.0;
        state.card.slowMilliseconds = static_cast<std::int32_t>(wait);
    }
}

// The clock is given its jump in advance, because reading the clock does not look at the faults.
void AnnounceJump(BoardState& state, const FaultEntry& entry) {
    if (Is(entry, "clock-back")) {
        const double nanoSeconds = std::strtod(entry.value, nullptr) * static_cast<double>(NanoSecondsPerSecond);
        JumpClockAt(state.clock, entry.at, -static_cast<std::int64_t>(nanoSeconds));
    }
}

// True if `matches` accepts one of the values of an active fault.
template <typename Matches>
bool AnyValue(const BoardState& state, Fault fault, Matches matches) {
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, fault, next)) {
        if (matches(value)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool FaultActive(const BoardState& state, Fault fault) {
    std::size_t next = 0;
    return NextFaultValue(state, fault, next) != nullptr;
}

const char* NextFaultValue(const BoardState& state, Fault fault, std::size_t& next) {
    while (next < std::size(state.faults)) {
        const FaultEntry& entry = state.faults[next++];
        if (entry.active && Is(entry, fault)) {
            return entry.value;
        }
    }
    return nullptr;
}

void BreakInstrument(const BoardState& state, InstrumentSettings& settings) {
    for (const FaultEntry& entry : state.faults) {
        const auto member = FaultRows[entry.row].traits.instrument;
        if (entry.active && member != nullptr) {
            settings.*member = true;
        }
    }
}

bool PathMissing(const BoardState& state, std::string_view path) {
    return std::any_of(std::begin(state.faults), std::end(state.faults), [path](const FaultEntry& entry) {
        const std::string_view missing = FaultRows[entry.row].traits.missingPath;
        return entry.active && !missing.empty() && IsBelow(path, missing);
    });
}

bool WriteRefused(const BoardState& state, Node node) {
    char space[PathLength] = {};
    Buffer path{space, sizeof(space)};
    NodePath(node, path);
    return AnyValue(state, "write-refused",
                    [&path](const char* part) { return path.Text().find(part) != std::string_view::npos; });
}

bool GpioTaken(const BoardState& state, Line line) {
    return AnyValue(state, "gpio-taken", [line](const char* value) {
        Line taken{};
        return value == AllIndicatorLines ? IsIndicatorLine(line) : ParseLine(value, taken) && taken == line;
    });
}

std::uint64_t LinkLength(const BoardState& state, int port) {
    std::uint64_t length = std::numeric_limits<std::uint64_t>::max();
    AnyValue(state, "link-cut", [port, &length](const char* value) {
        std::uint64_t bytes = 0;
        int only = 0;
        if (ParseLink(value, bytes, only) && (only == 0 || only == port)) {
            length = std::min(length, bytes);
        }
        return false;
    });
    return length;
}

bool RailOut(const BoardState& state, int channel) {
    return AnyValue(state, "rail-out",
                    [channel](const char* value) { return std::strtol(value, nullptr, 10) == channel; });
}

std::int64_t NextFaultAt(const BoardState& state) {
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (const FaultEntry& entry : state.faults) {
        if (entry.used && !entry.active) {
            next = std::min(next, entry.at);
        }
    }
    return next;
}

void ActivateDueFaults(BoardState& state, std::int64_t now) {
    const EdgeWatch watch(state, HomeFlag);
    for (FaultEntry& entry : state.faults) {
        if (entry.used && !entry.active && entry.at <= now) {
            entry.active = true;
            SwitchFault(state, entry, true);
        }
    }
    Changed(state);
}

const std::vector<FaultInfo>& Board::KnownFaults() {
    static const std::vector<FaultInfo> known = [] {
        std::vector<FaultInfo> list;
        for (const FaultRow& row : FaultRows) {
            list.push_back({std::string(row.name), row.traits.valueName, row.description});
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
    const BoardLock state(*m_state);
    auto* entry = std::find_if(std::begin(state->faults), std::end(state->faults),
                               [](const FaultEntry& candidate) { return !candidate.used; });
    if (entry == std::end(state->faults)) {
        error = "too many faults are set";
        return false;
    }
    *entry = FaultEntry{};
    entry->used = true;
    entry->row = static_cast<std::uint32_t>(fault.row);
    entry->at = std::max(fault.at, MonotonicNow(state->clock));
    std::snprintf(entry->text, sizeof(entry->text), "%s", text.c_str());
    std::snprintf(entry->value, sizeof(entry->value), "%.*s", static_cast<int>(fault.value.size()), fault.value.data());
    AnnounceJump(*state, *entry);
    BringUpToDate(*state);
    Changed(*state);
    return true;
}

bool Board::ClearFault(const std::string& name, std::string& error) {
    const std::size_t row = RowOf(name);
    if (row == std::size(FaultRows)) {
        error = "unknown fault \"" + name + "\"";
        return false;
    }
    const BoardLock state(*m_state);
    const EdgeWatch watch(*state, HomeFlag);
    for (FaultEntry& entry : state->faults) {
        if (entry.used && entry.row == row) {
            if (Is(entry, "clock-back") && !entry.active) {
                CancelJump(state->clock);
            }
            const FaultEntry cleared = std::exchange(entry, FaultEntry{});
            if (cleared.active) {
                SwitchFault(*state, cleared, false);
            }
        }
    }
    Changed(*state);
    return true;
}

std::vector<ActiveFault> Board::Faults() const {
    const BoardLock state(*m_state);
    std::vector<ActiveFault> list;
    for (const FaultEntry& entry : state->faults) {
        if (entry.used) {
            list.push_back({entry.text, entry.active});
        }
    }
    return list;
}

}  // namespace Bench
