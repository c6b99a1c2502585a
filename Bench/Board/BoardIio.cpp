// The on-chip converter, with the two eight-way multiplexers in front of its input 6.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

enum IioFile : std::uint8_t { RawFile, ScaleFile };

constexpr int MultiplexerInput = 6;
constexpr int FullScale = 1023;  // ten bits

int RawOf(const BoardState& state, int input) {
    if (input != MultiplexerInput) {
        return state.iio.inputRaw[input];
    }
    const int channel = SelectedChannel(state);
    if (state.iio.source[channel] == Source::Raw) {
        return state.iio.raw[channel];
    }
    const double volts =
        state.iio.source[channel] == Source::Volts ? state.iio.volts[channel] : ChannelVolts(state, channel);
    const double scale = std::strtod(state.iio.scale, nullptr);
    const double raw = scale > 0.0 ? std::round(volts * 1024.0 / scale) : 0.0;
    return static_cast<int>(std::clamp(raw, 0.0, static_cast<double>(FullScale)));
}

}  // namespace

Node FindIioNode(const BoardState& /*state*/, std::string_view name) {
    constexpr std::string_view Prefix = "in_voltage";
    constexpr std::string_view Suffix = "_raw";
    if (name == "in_voltage_scale") {
        return {Family::Iio, ScaleFile};
    }
    if (!name.starts_with(Prefix) || !name.ends_with(Suffix) || name.size() <= Prefix.size() + Suffix.size()) {
        return {};
    }
    const std::string_view number = name.substr(Prefix.size(), name.size() - Prefix.size() - Suffix.size());
    std::uint8_t input = 0;
    if (!ParseNumber(number, input) || input >= IioInputs) {
        return {};
    }
    return {Family::Iio, RawFile, input};
}

void IioPath(Node node, Buffer& path) {
    Put(path, "/sys/bus/iio/devices/iio:device0/in_voltage");
    if (node.file == ScaleFile) {
        Put(path, "_scale");
    } else {
        Put(path, "%u_raw", static_cast<unsigned>(node.first));
    }
}

void IioContent(BoardState& state, Node node, Buffer& content) {
    if (node.file == ScaleFile) {
        Put(content, "%s\n", state.iio.scale);
    } else {
        Put(content, "%d\n", RawOf(state, node.first));
    }
}

int SelectedChannel(const BoardState& state) {
    constexpr Line Address[] = {{2, 27}, {2, 28}, {2, 31}};
    constexpr Line SecondMultiplexer{3, 10};  // low for the second multiplexer
    int channel = PinLevel(state, SecondMultiplexer) ? 0 : 8;
    for (int bit = 0; bit < 3; ++bit) {
        channel += PinLevel(state, Address[bit]) ? 1 << bit : 0;
    }
    return channel;
}

void Board::SetMultiplexerRaw(int channel, int raw) {
    const BoardLock state(*m_state);
    if (channel >= 0 && channel < MultiplexerChannels) {
        state->iio.source[channel] = Source::Raw;
        state->iio.raw[channel] = raw;
    }
}

void Board::SetMultiplexerVolts(int channel, double volts) {
    const BoardLock state(*m_state);
    if (channel >= 0 && channel < MultiplexerChannels) {
        state->iio.source[channel] = Source::Volts;
        state->iio.volts[channel] = volts;
    }
}

void Board::ReleaseMultiplexer(int channel) {
    if (channel >= 0 && channel < MultiplexerChannels) {
        BoardLock(*m_state)->iio.source[channel] = Source::Model;
    }
}

int Board::SelectedMultiplexer() const { return SelectedChannel(*BoardLock(*m_state)); }

void Board::SetIioRaw(int input, int raw) {
    if (input >= 0 && input < IioInputs) {
        BoardLock(*m_state)->iio.inputRaw[input] = raw;
    }
}

void Board::SetIioScale(const std::string& text) {
    const BoardLock state(*m_state);
    std::snprintf(state->iio.scale, sizeof(state->iio.scale), "%s", text.c_str());
}

}  // namespace Bench
