// The kernel's pin files, as a board has them whose kernel names the lines pioA0 to pioD31.
#include <cerrno>
#include <charconv>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

enum GpioFile : std::uint8_t { ExportFile, UnexportFile, DirectionFile, EdgeFile, ValueFile };

constexpr struct {
    std::string_view name;
    GpioFile file;
} PinFiles[] = {{"direction", DirectionFile}, {"edge", EdgeFile}, {"value", ValueFile}};

constexpr std::string_view EdgeNames[] = {"none", "rising", "falling", "both"};

constexpr int CardSwitchBank = 3;
constexpr int CardSwitchPin = 9;

bool ParseNumber(std::string_view text, int& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

void PinFolder(int bank, int pin, char (&path)[64]) {
    std::snprintf(path, sizeof(path), "/sys/class/gpio/pio%c%d", "ABCD"[bank], pin);
}

int Claim(BoardState& state, std::string_view text, bool claim) {
    int number = 0;
    if (!ParseNumber(text, number) || number < 0 || number >= Banks * PinsPerBank) {
        return EINVAL;
    }
    const int bank = number / PinsPerBank;
    const int index = number % PinsPerBank;
    PinState& pin = state.pins[bank][index];
    if (pin.claimed == claim || (claim && GpioTaken(state, bank, index))) {
        return claim ? EBUSY : EINVAL;
    }
    const bool before = PinLevel(state, bank, index);
    pin.claimed = claim;
    pin.output = false;
    pin.edge = Edge::None;
    const bool after = PinLevel(state, bank, index);
    if (before != after) {
        NoteEdge(pin, after);
    }
    char folder[64];
    PinFolder(bank, index, folder);
    if (claim) {
        MakeShadowDirectory(state, folder, {"direction", "edge", "value"});
    } else {
        RemoveShadowDirectory(state, folder, {"direction", "edge", "value"});
    }
    return 0;
}

int SetDirection(BoardState& state, int bank, int index, std::string_view text) {
    PinState& pin = state.pins[bank][index];
    const bool before = PinLevel(state, bank, index);
    if (text == "in") {
        pin.output = false;
    } else if (text == "out" || text == "low") {
        pin.output = true;
        pin.latch = false;
    } else if (text == "high") {
        pin.output = true;
        pin.latch = true;
    } else {
        return EINVAL;
    }
    const bool after = PinLevel(state, bank, index);
    if (before != after) {
        NoteEdge(pin, after);
    }
    return 0;
}

int SetEdge(PinState& pin, std::string_view text) {
    for (std::size_t i = 0; i < std::size(EdgeNames); ++i) {
        if (EdgeNames[i] == text) {
            if (pin.output && i != 0) {
                return EIO;
            }
            pin.edge = static_cast<Edge>(i);
            return 0;
        }
    }
    return EINVAL;
}

int SetValue(BoardState& state, Node node, std::string_view text) {
    int number = 0;
    if (!state.pins[node.first][node.second].output) {
        return EPERM;
    }
    if (!ParseNumber(text, number)) {
        return EINVAL;
    }
    SetPinLatch(state, node.first, node.second, number != 0);
    return 0;
}

bool PinExists(int bank, int pin) { return bank >= 0 && bank < Banks && pin >= 0 && pin < PinsPerBank; }

}  // namespace

Node FindGpioNode(const BoardState& state, std::string_view name) {
    if (name == "export") {
        return {Family::Gpio, ExportFile};
    }
    if (name == "unexport") {
        return {Family::Gpio, UnexportFile};
    }
    const std::size_t slash = name.find('/');
    int pin = 0;
    if (slash == std::string_view::npos || slash < 5 || !name.starts_with("pio") || name[3] < 'A' || name[3] > 'D' ||
        !ParseNumber(name.substr(4, slash - 4), pin) || pin < 0 || pin >= PinsPerBank) {
        return {};
    }
    const int bank = name[3] - 'A';
    if (!state.pins[bank][pin].claimed) {
        return {};
    }
    for (const auto& row : PinFiles) {
        if (row.name == name.substr(slash + 1)) {
            return {Family::Gpio, row.file, static_cast<std::uint8_t>(bank), static_cast<std::uint8_t>(pin)};
        }
    }
    return {};
}

void GpioPath(Node node, Buffer& path) {
    if (node.file == ExportFile || node.file == UnexportFile) {
        Put(path, "/sys/class/gpio/%s", node.file == ExportFile ? "export" : "unexport");
        return;
    }
    char folder[64];
    PinFolder(node.first, node.second, folder);
    Put(path, "%s/%s", folder, PinFiles[node.file - DirectionFile].name.data());
}

void GpioContent(BoardState& state, Node node, Buffer& content) {
    const PinState& pin = state.pins[node.first][node.second];
    if (node.file == DirectionFile) {
        Put(content, "%s\n", pin.output ? "out" : "in");
    } else if (node.file == EdgeFile) {
        Put(content, "%s\n", EdgeNames[static_cast<std::size_t>(pin.edge)].data());
    } else if (node.file == ValueFile) {
        Put(content, "%d\n", PinLevel(state, node.first, node.second) ? 1 : 0);
    }
}

int GpioWrite(BoardState& state, Node node, std::string_view text) {
    switch (node.file) {
        case ExportFile:
            return Claim(state, text, true);
        case UnexportFile:
            return Claim(state, text, false);
        case DirectionFile:
            return SetDirection(state, node.first, node.second, text);
        case EdgeFile:
            return SetEdge(state.pins[node.first][node.second], text);
        default:
            return SetValue(state, node, text);
    }
}

bool IsGpioValue(Node node) { return node.family == Family::Gpio && node.file == ValueFile; }

bool PinLevel(const BoardState& state, int bank, int pin) {
    constexpr int FlagBank = 1;
    constexpr int FlagPin = 18;
    constexpr int ConversionBank = 0;
    constexpr int ConversionPin = 21;
    const PinState& line = state.pins[bank][pin];
    if (line.output) {
        return line.latch;
    }
    if (line.driven >= 0) {
        return line.driven != 0;
    }
    if (bank == FlagBank && pin == FlagPin) {
        return FlagHigh(state.instrument, EffectiveSettings(state));
    }
    if (bank == ConversionBank && pin == ConversionPin) {
        return EndOfConversionLevel(state);
    }
    if (bank == CardSwitchBank && pin == CardSwitchPin) {
        return CardPresent(state);
    }
    return line.latch;
}

void NoteEdge(PinState& pin, bool level) { ++(level ? pin.rising : pin.falling); }

void SetPinLatch(BoardState& state, int bank, int pin, bool level) {
    const bool before = PinLevel(state, bank, pin);
    state.pins[bank][pin].latch = level;
    const bool after = PinLevel(state, bank, pin);
    if (before != after) {
        NoteEdge(state.pins[bank][pin], after);
    }
}

void SetPinDriven(BoardState& state, int bank, int pin, int driven) {
    const bool before = PinLevel(state, bank, pin);
    state.pins[bank][pin].driven = static_cast<std::int8_t>(driven);
    const bool after = PinLevel(state, bank, pin);
    if (before != after) {
        NoteEdge(state.pins[bank][pin], after);
    }
    Changed(state);
}

std::uint32_t EdgeCount(const BoardState& state, int bank, int pin) {
    const PinState& line = state.pins[bank][pin];
    switch (line.edge) {
        case Edge::Rising:
            return line.rising;
        case Edge::Falling:
            return line.falling;
        case Edge::Both:
            return line.rising + line.falling;
        case Edge::None:
            break;
    }
    return 0;
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

}  // namespace Bench
