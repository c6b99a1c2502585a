// The kernel's pin files, as on a board whose kernel names the lines pioA0 to pioD31.
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

enum GpioFile : std::uint8_t { ExportFile, UnexportFile, DirectionFile, EdgeFile, ValueFile };

constexpr std::string_view GpioFileNames[] = {"export", "unexport", "direction", "edge", "value"};
constexpr std::string_view EdgeNames[] = {"none", "rising", "falling", "both"};

void PinFolder(Line line, Buffer& path) { Put(path, "/sys/class/gpio/pio%c%d", "ABCD"[line.bank], line.pin); }

int Claim(BoardState& state, std::string_view text, bool claim) {
    std::uint32_t number = 0;
    if (!ParseNumber(text, number) || number >= std::uint32_t{Banks} * PinsPerBank) {
        return EINVAL;
    }
    const Line line{static_cast<int>(number) / PinsPerBank, static_cast<int>(number) % PinsPerBank};
    PinState& pin = state.PinAt(line);
    if (pin.claimed == claim || (claim && GpioTaken(state, line))) {
        return claim ? EBUSY : EINVAL;
    }
    {
        const EdgeWatch watch(state, line);
        pin.claimed = claim;
        pin.output = false;
        pin.edge = Edge::None;
    }
    char folder[64];
    Buffer path{folder, sizeof(folder)};
    PinFolder(line, path);
    SetShadowFolder(state, folder, {"direction", "edge", "value"}, claim);
    return 0;
}

int SetDirection(BoardState& state, Line line, std::string_view text) {
    const EdgeWatch watch(state, line);
    PinState& pin = state.PinAt(line);
    if (text == "in") {
        pin.output = false;
    } else if (text == "out" || text == "low" || text == "high") {
        pin.output = true;
        pin.latch = text == "high";
    } else {
        return EINVAL;
    }
    return 0;
}

int SetEdge(PinState& pin, std::string_view text) {
    const auto* name = std::find(std::begin(EdgeNames), std::end(EdgeNames), text);
    if (name == std::end(EdgeNames)) {
        return EINVAL;
    }
    const auto edge = static_cast<Edge>(name - std::begin(EdgeNames));
    if (pin.output && edge != Edge::None) {
        return EIO;
    }
    pin.edge = edge;
    return 0;
}

int SetValue(BoardState& state, Line line, std::string_view text) {
    int number = 0;
    if (!state.PinAt(line).output) {
        return EPERM;
    }
    if (!ParseNumber(text, number)) {
        return EINVAL;
    }
    SetPinLatch(state, line, number != 0);
    return 0;
}

bool PinExists(Line line) { return line.bank >= 0 && line.bank < Banks && line.pin >= 0 && line.pin < PinsPerBank; }

void SetPinDriven(BoardState& state, Line line, std::int8_t driven) {
    if (PinExists(line)) {
        const EdgeWatch watch(state, line);
        state.PinAt(line).driven = driven;
    }
    Changed(state);
}

}  // namespace

Node FindGpioNode(const BoardState& state, std::string_view name) {
    const std::size_t slash = name.find('/');
    const auto* file = std::find(std::begin(GpioFileNames), std::end(GpioFileNames), name.substr(slash + 1));
    if (file == std::end(GpioFileNames)) {
        return {};
    }
    const auto index = static_cast<std::uint8_t>(file - std::begin(GpioFileNames));
    const bool isPin = slash != std::string_view::npos;
    if (isPin != (index >= DirectionFile)) {
        return {};
    }
    if (!isPin) {
        return {Family::Gpio, index};
    }
    std::uint32_t pin = 0;
    if (slash < 5 || !name.starts_with("pio") || name[3] < 'A' || name[3] > 'D' ||
        !ParseNumber(name.substr(4, slash - 4), pin) || pin >= PinsPerBank) {
        return {};
    }
    const Line line{name[3] - 'A', static_cast<int>(pin)};
    return state.PinAt(line).claimed
               ? Node{Family::Gpio, index, static_cast<std::uint8_t>(line.bank), static_cast<std::uint8_t>(line.pin)}
               : Node{};
}

void GpioPath(Node node, Buffer& path) {
    if (node.file < DirectionFile) {
        Put(path, "/sys/class/gpio");
    } else {
        PinFolder(LineOf(node), path);
    }
    Put(path, "/%s", GpioFileNames[node.file].data());
}

void GpioContent(BoardState& state, Node node, Buffer& content) {
    const PinState& pin = state.PinAt(LineOf(node));
    if (node.file == DirectionFile) {
        Put(content, "%s\n", pin.output ? "out" : "in");
    } else if (node.file == EdgeFile) {
        Put(content, "%s\n", EdgeNames[static_cast<std::size_t>(pin.edge)].data());
    } else if (node.file == ValueFile) {
        Put(content, "%d\n", PinLevel(state, LineOf(node)) ? 1 : 0);
    }
}

int GpioWrite(BoardState& state, Node node, std::string_view text) {
    switch (node.file) {
        case ExportFile:
            return Claim(state, text, true);
        case UnexportFile:
            return Claim(state, text, false);
        case DirectionFile:
            return SetDirection(state, LineOf(node), text);
        case EdgeFile:
            return SetEdge(state.PinAt(LineOf(node)), text);
        default:
            return SetValue(state, LineOf(node), text);
    }
}

bool IsGpioValue(Node node) { return node.family == Family::Gpio && node.file == ValueFile; }

bool PinLevel(const BoardState& state, Line line) {
    const PinState& pin = state.PinAt(line);
    if (pin.output) {
        return pin.latch;
    }
    if (pin.driven >= 0) {
        return pin.driven != 0;
    }
    if (line == HomeFlag) {
        return FlagHigh(state.instrument, EffectiveSettings(state));
    }
    if (line == ConversionLine) {
        return EndOfConversionLevel(state);
    }
    return line == CardSwitch ? state.card.inserted : pin.latch;
}

void CountEdge(PinState& pin, bool level) { ++(level ? pin.rising : pin.falling); }

EdgeWatch::~EdgeWatch() {
    const bool after = PinLevel(m_state, m_line);
    if (after != m_before) {
        CountEdge(m_state.PinAt(m_line), after);
    }
}

void SetPinLatch(BoardState& state, Line line, bool level) {
    const EdgeWatch watch(state, line);
    state.PinAt(line).latch = level;
}

std::uint32_t EdgeCount(const BoardState& state, Line line) {
    const PinState& pin = state.PinAt(line);
    return (pin.edge == Edge::Rising || pin.edge == Edge::Both ? pin.rising : 0) +
           (pin.edge == Edge::Falling || pin.edge == Edge::Both ? pin.falling : 0);
}

PinView Board::Pin(int bank, int pin) const {
    const Line line{bank, pin};
    if (!PinExists(line)) {
        return {};
    }
    const BoardLock state(*m_state);
    const PinState& now = state->PinAt(line);
    const std::optional<bool> driven = now.driven < 0 ? std::nullopt : std::optional<bool>(now.driven != 0);
    return {now.claimed, now.output, now.latch, PinLevel(*state, line), driven, now.edge};
}

void Board::DrivePin(int bank, int pin, bool level) {
    SetPinDriven(*BoardLock(*m_state), {bank, pin}, level ? std::int8_t{1} : std::int8_t{0});
}

void Board::ReleasePin(int bank, int pin) { SetPinDriven(*BoardLock(*m_state), {bank, pin}, -1); }

}  // namespace Bench
