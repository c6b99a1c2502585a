// The kernel's files of PWM chip 0.
#include <cerrno>
#include <charconv>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

enum PwmFile : std::uint8_t { CountFile, ExportFile, UnexportFile, EnableFile, PeriodFile, DutyFile };

constexpr struct {
    std::string_view name;
    PwmFile file;
} ChipFiles[] = {{"npwm", CountFile}, {"export", ExportFile}, {"unexport", UnexportFile}};

constexpr struct {
    std::string_view name;
    PwmFile file;
} ChannelFiles[] = {{"enable", EnableFile}, {"period", PeriodFile}, {"duty_cycle", DutyFile}};

bool ParseNumber(std::string_view text, std::uint32_t& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

int Claim(BoardState& state, std::uint32_t channel, bool claim) {
    if (channel >= PwmChannels) {
        return ENODEV;
    }
    PwmState& pwm = state.pwm[channel];
    if (pwm.exported == claim) {
        return claim ? EBUSY : ENODEV;
    }
    pwm = PwmState{};
    pwm.exported = claim;
    char folder[64];
    std::snprintf(folder, sizeof(folder), "/sys/class/pwm/pwmchip0/pwm%u", channel);
    if (claim) {
        MakeShadowDirectory(state, folder, {"enable", "period", "duty_cycle"});
    } else {
        RemoveShadowDirectory(state, folder, {"enable", "period", "duty_cycle"});
    }
    return 0;
}

int SetEnable(PwmState& pwm, std::uint32_t value) {
    if (value > 1 || (value == 1 && pwm.period == 0)) {
        return EINVAL;
    }
    pwm.enabled = value == 1;
    return 0;
}

int SetPeriod(PwmState& pwm, std::uint32_t value) {
    if (value == 0 || value < pwm.duty) {
        return EINVAL;
    }
    pwm.period = value;
    return 0;
}

int SetDuty(PwmState& pwm, std::uint32_t value) {
    if (value > pwm.period) {
        return EINVAL;
    }
    pwm.duty = value;
    return 0;
}

}  // namespace

Node FindPwmNode(const BoardState& state, std::string_view name) {
    for (const auto& row : ChipFiles) {
        if (row.name == name) {
            return {Family::Pwm, row.file};
        }
    }
    if (name.size() < 6 || !name.starts_with("pwm") || name[4] != '/' || name[3] < '0' ||
        name[3] >= '0' + PwmChannels) {
        return {};
    }
    const auto channel = static_cast<std::uint8_t>(name[3] - '0');
    if (!state.pwm[channel].exported) {
        return {};
    }
    for (const auto& row : ChannelFiles) {
        if (row.name == name.substr(5)) {
            return {Family::Pwm, row.file, channel};
        }
    }
    return {};
}

void PwmPath(Node node, Buffer& path) {
    if (node.file < EnableFile) {
        Put(path, "/sys/class/pwm/pwmchip0/%s", ChipFiles[node.file].name.data());
    } else {
        Put(path, "/sys/class/pwm/pwmchip0/pwm%u/%s", static_cast<unsigned>(node.first),
            ChannelFiles[node.file - EnableFile].name.data());
    }
}

void PwmContent(BoardState& state, Node node, Buffer& content) {
    const PwmState& pwm = state.pwm[node.first];
    switch (node.file) {
        case CountFile:
            Put(content, "%d\n", PwmChannels);
            break;
        case EnableFile:
            Put(content, "%d\n", pwm.enabled ? 1 : 0);
            break;
        case PeriodFile:
            Put(content, "%llu\n", static_cast<unsigned long long>(pwm.period));
            break;
        case DutyFile:
            Put(content, "%llu\n", static_cast<unsigned long long>(pwm.duty));
            break;
        default:
            break;
    }
}

int PwmWrite(BoardState& state, Node node, std::string_view text) {
    std::uint32_t value = 0;
    if (node.file == CountFile) {
        return EIO;
    }
    if (!ParseNumber(text, value)) {
        return EINVAL;
    }
    PwmState& pwm = state.pwm[node.first];
    switch (node.file) {
        case ExportFile:
            return Claim(state, value, true);
        case UnexportFile:
            return Claim(state, value, false);
        case EnableFile:
            return SetEnable(pwm, value);
        case PeriodFile:
            return SetPeriod(pwm, value);
        default:
            return SetDuty(pwm, value);
    }
}

PwmView Board::Pwm(int channel) const {
    if (channel < 0 || channel >= PwmChannels) {
        return {};
    }
    const BoardLock lock(*m_state);
    const PwmState& pwm = m_state->pwm[channel];
    return {pwm.exported, pwm.enabled, pwm.period, pwm.duty};
}

}  // namespace Bench
